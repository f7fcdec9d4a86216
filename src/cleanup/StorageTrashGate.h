#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/FileReader.h"
#include "platform/MountTable.h"
#include "platform/PerfProbe.h"
#include "platform/Places.h"
#include "storage/FileEntry.h"

namespace lumenary {

/// What is the person's own to remove: the one rule by which a removal is offered at all. It only reads; what moves
/// asks it again. From any thread.
class StorageTrashGate {
 public:
  /// All references must outlive the value. The drives are those mounted now: a gate is made afresh when they change.
  StorageTrashGate(const FileReader& reader, const MountTable& mountTable, const Places& places,
                   const PerfProbe& probe = {});

  /// Whether the thing may be offered for removal. Cheap enough for each row of a long list: the disk is asked for
  /// `~/.gradle` alone, and once for each name in `/Volumes`.
  bool canMoveToTrash(const FileEntry& entry) const;

  /// A folder that tools make again as a whole.
  bool isRegenerableRoot(std::string_view path) const;
  /// An app that stands right in a folder of apps.
  bool isInstalledApp(std::string_view path) const;

  /// The person's home folder, standardised.
  std::string home() const;
  /// The person's folders by the names that the desktop gave them.
  const std::vector<std::string>& personalFolders() const { return places_.personalFolders; }

 private:
  std::optional<bool> onExternalDrive(std::string_view path) const;
  std::optional<bool> onMountedDrive(std::string_view path) const;
  std::string resolvedVolumePath(std::string_view path) const;
  bool isInHomeToRemove(std::string_view relative, FileEntry::Kind kind) const;
  bool isDataOfInstalledFlatpak(std::string_view path, std::string_view home) const;
  bool holdsBaseFolder(std::string_view path) const;
  bool isRegenerableRoot(std::string_view path, std::string_view home) const;

  const FileReader& reader_;
  const Places& places_;
  bool readsHomeAfresh_ = false;
  std::string home_;
  std::vector<std::string> drives_;       ///< where a person's drives are mounted, no trailing slash
  std::vector<std::string> baseFolders_;  ///< where apps keep their things; they don't go as a whole
  mutable std::mutex lock_;
  mutable std::unordered_map<std::string, std::string> volumeRoots_;  ///< "/Volumes/NAME" with its links resolved
};

}  // namespace lumenary
