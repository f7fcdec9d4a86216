#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/FileIdentity.h"
#include "platform/FileReader.h"
#include "platform/MountTable.h"
#include "platform/Places.h"

namespace lumenary {

/// What never moves, whatever any other rule says. It is made afresh for every act, from the disk as it is then. Mount
/// points, which the mover sees for itself, come on top.
class GuardList {
 public:
  /// `places.home` and the mounts must be known, and each guarded path be looked at unless it is missing; otherwise
  /// everything is refused. Each mount may have Trash folders.
  GuardList(const FileReader& reader, const std::vector<Mount>& mounts, const Places& places);

  /// True where the thing at `path` (no links in it) must stay: it is guarded itself, holds something guarded, lies
  /// inside a guarded tree, or is a guarded place under another name.
  bool keeps(std::string_view path, const FileIdentity& identity) const;

  /// True where the opened folder lies inside a guarded tree, by whatever mount it was reached.
  bool keepsBelow(const FileReader& reader, const Descriptor& folder) const;

  /// True where nothing may be put at `path`: it lies inside a guarded tree or is a guarded place.
  bool keepsOut(std::string_view path) const;

 private:
  bool isInsideGuarded(std::string_view path) const;
  void guardHome(const FileReader& reader, const std::string& home);
  /// Returns what stands there, where anything does.
  std::optional<FileIdentity> guard(const FileReader& reader, const std::string& path,
                                    std::vector<std::string>& guarded);
  void guardPlace(const FileReader& reader, const std::string& path);
  void guardTree(const FileReader& reader, const std::string& path);

  bool isComplete_ = false;
  std::vector<std::string> places_;         ///< may not go, nor what holds them; what they hold may
  std::vector<std::string> trees_;          ///< may not go, nor what holds them, nor anything in them
  std::vector<std::string> volumeTrashes_;  ///< nothing in them may go
  std::vector<Mount> mounts_;               ///< nothing of the kernel's own may go
  std::vector<FileIdentity> identities_;
  std::vector<FileIdentity> treeIdentities_;
};

}  // namespace lumenary
