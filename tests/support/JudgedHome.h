#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "base/Path.h"
#include "cleanup/CleanupCatalog.h"
#include "cleanup/StorageTrashGate.h"
#include "platform/linux/LinuxFileReader.h"
#include "storage/StorageScanner.h"
#include "support/TemporaryHome.h"

namespace lumenary {

class KnownApps final : public AppNames {
 public:
  std::map<std::string, std::string, std::less<>> names;

  std::optional<std::string> nameOf(std::string_view identifier) const override {
    const auto found = names.find(identifier);
    return found == names.end() ? std::nullopt : std::optional(found->second);
  }
};

class MadeMounts final : public MountTable {
 public:
  std::vector<Mount> all{{.id = 1, .point = "/", .type = "ext4"}};

  SystemResult<std::vector<Mount>> mounts() const override { return all; }
};

inline FileEntry fileEntry(const std::string& path, std::int64_t byteCount = 0, std::optional<Date> modified = {}) {
  return {.id = UUID::random(),
          .url = {.path = path, .isFolder = false},
          .name = std::string(lastPathComponent(path)),
          .kind = FileEntry::Kind::file,
          .byteCount = byteCount,
          .modifiedAt = modified,
          .category = StorageScanner::category(path)};
}

inline FileEntry folderEntry(const std::string& path, std::int64_t byteCount = 0) {
  return StorageNode{.path = path, .name = std::string(lastPathComponent(path)), .byteCount = byteCount, .file = {}}
      .asEntry();
}

/// A home with what judges the things in it. Nothing need stand there: most rules go by the path.
struct JudgedHome {
  explicit JudgedHome(Places of = madePlaces("/home/anna")) : places(std::move(of)) {}

  static Places madePlaces(const std::string& home) {
    Places places;
    places.home = home;
    places.dataHome = home + "/.local/share";
    places.configHome = home + "/.config";
    places.cacheHome = home + "/.cache";
    places.stateHome = home + "/.local/state";
    places.support = places.dataHome + "/Lumenary";
    places.defaultsFile = places.configHome + "/Lumenary/defaults.json";
    places.userID = ::geteuid();
    places.driveFolders = {"/media", "/run/media", "/mnt"};
    return places;
  }

  /// "~/x" is in the home.
  std::string at(std::string_view path) const {
    return path.starts_with("~") ? places.home + std::string(path.substr(1)) : std::string(path);
  }

  Places places;
  LinuxFileReader reader;
  MadeMounts mounts;
  KnownApps apps;
  CleanupCatalog catalog{apps};
  StorageTrashGate gate{reader, mounts, places};
};

}  // namespace lumenary
