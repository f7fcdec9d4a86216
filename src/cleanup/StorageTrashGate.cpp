#include "cleanup/StorageTrashGate.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "base/Path.h"
#include "cleanup/LinuxCatalog.h"
#include "storage/VolumeMetricsService.h"

namespace lumenary {
namespace {

using Names = std::string_view;

constexpr auto protectedHomeFolders = std::to_array<Names>({"Desktop", "Documents", "Downloads", "Library", "Movies",
                                                            "Music", "Pictures", "Public", "Applications", ".Trash"});
constexpr auto protectedHomeItems = std::to_array<Names>(
    {".ssh", ".gnupg", ".aws", ".kube", ".azure", ".config", ".password-store", ".docker/config.json"});
constexpr auto protectedLibraryItems =
    std::to_array<Names>({"Keychains", "Preferences", "Mobile Documents", "CloudStorage", "Mail", "Messages",
                          "Accounts", "Cookies", "Safari", "Autosave Information", "Application Scripts",
                          "LaunchAgents", "Calendars", "Passes", "IdentityServices", "Sharing", "HomeKit", "Photos"});
constexpr auto libraryGroupingFolders =
    std::to_array<Names>({"Application Support", "Containers", "Group Containers", "Developer", "Logs", "Caches"});
constexpr auto protectedDriveItems =
    std::to_array<Names>({".Spotlight-V100", ".fseventsd", ".Trashes", ".DocumentRevisions-V100", ".TemporaryItems",
                          "System", "Library", "Users", "Applications", "private"});

constexpr auto regenerableRoots =
    std::to_array<Names>({"/.cache", "/Library/Caches", "/.gradle/caches", "/.gradle/wrapper", "/.npm/_cacache",
                          "/Library/Developer/Xcode/DerivedData"});
constexpr std::string_view gradleFolder = "/.gradle";
constexpr auto gradleSettings = std::to_array<Names>({"gradle.properties", "init.d"});

// What Linux has beside these.
constexpr auto linuxHomeFolders = std::to_array<Names>({"Videos", "Templates", "snap", ".var"});
constexpr std::string_view flatpakDataFolder = ".var/app";  ///< groups the data of all Flatpak apps
constexpr auto linuxDriveItems =
    std::to_array<Names>({"lost+found", ".Trash", "System Volume Information", "$RECYCLE.BIN"});
/// In `~/.config/APP`, where nothing else may go.
constexpr auto linuxConfigCaches = std::to_array<Names>({"Cache", "Code Cache", "GPUCache", "DawnCache", "CachedData"});

constexpr std::string_view volumesFolder = "/Volumes/";

template <std::size_t count>
bool isOneOf(std::string_view name, const std::array<Names, count>& names) {
  return std::ranges::find(names, name) != names.end();
}

/// The first component of `path`, and what stands behind it; slashes in front are passed over.
struct Split {
  std::string_view first;
  std::string_view rest;
};
Split split(std::string_view path) {
  path.remove_prefix(std::min(path.find_first_not_of('/'), path.size()));
  const std::size_t end = std::min(path.find('/'), path.size());
  return {.first = path.substr(0, end), .rest = path.substr(std::min(end + 1, path.size()))};
}

/// `~/.config/APP/Cache` and its like.
bool isConfigCache(std::string_view relative) {
  const Split config = split(relative);
  const Split app = split(config.rest);
  return config.first == ".config" && !app.first.empty() && isOneOf(app.rest, linuxConfigCaches);
}

bool isBelow(std::string_view path, std::string_view folder) {
  return path.size() > folder.size() && isSameOrInside(path, folder);
}

}  // namespace

StorageTrashGate::StorageTrashGate(const FileReader& reader, const MountTable& mountTable, const Places& places,
                                   const PerfProbe& probe)
    : reader_(reader),
      places_(places),
      readsHomeAfresh_(probe.isDisabled("homepath")),
      home_(standardise(places.home)),
      baseFolders_({places.dataHome, places.configHome, places.cacheHome, places.stateHome}) {
  if (const auto mounts = mountTable.mounts()) {
    drives_ = drivesOfPerson(*mounts, places);
  }
}

std::string StorageTrashGate::home() const { return readsHomeAfresh_ ? standardise(places_.home) : home_; }

bool StorageTrashGate::canMoveToTrash(const FileEntry& entry) const {
  if (entry.kind == FileEntry::Kind::symbolicLink || places_.home.empty()) {
    return false;
  }
  const std::string path = standardise(entry.url.path);
  if (const auto answer = onExternalDrive(path)) {
    return *answer;
  }
  const std::string home = this->home();
  if (holdsBaseFolder(path) || std::ranges::find(places_.personalFolders, path) != places_.personalFolders.end() ||
      mustStayOnLinux(path, home) || isDataOfInstalledFlatpak(path, home)) {
    return false;
  }
  if (entry.kind == FileEntry::Kind::directory && (isRegenerableRoot(path, home) || isInstalledApp(path))) {
    return true;
  }
  return isBelow(path, home) && isInHomeToRemove(std::string_view(path).substr(home.size() + 1), entry.kind);
}

/// `relative` is a path below the home folder.
bool StorageTrashGate::isInHomeToRemove(std::string_view relative, FileEntry::Kind kind) const {
  const Split first = split(relative);
  const Split second = split(first.rest);
  const bool isAlone = first.rest.empty();
  if (isAlone && (isOneOf(first.first, protectedHomeFolders) || isOneOf(first.first, linuxHomeFolders) ||
                  (kind == FileEntry::Kind::file && first.first.starts_with('.')))) {
    return false;
  }
  const std::string_view firstTwo =
      isAlone ? first.first : relative.substr(0, first.first.size() + 1 + second.first.size());
  if (isOneOf(first.first, protectedHomeItems) || isOneOf(firstTwo, protectedHomeItems) ||
      relative == flatpakDataFolder) {
    return false;
  }
  if (first.first != "Library") {
    return true;
  }
  const bool isGroupingFolder = second.rest.empty() && isOneOf(second.first, libraryGroupingFolders);
  return !isAlone && !isOneOf(second.first, protectedLibraryItems) && !isGroupingFolder;
}

/// What an installed app keeps holds profiles, saved games and mail; only its cache may go.
bool StorageTrashGate::isDataOfInstalledFlatpak(std::string_view path, std::string_view home) const {
  const std::string folder = appendingPathComponent(home, flatpakDataFolder);
  if (!isBelow(path, folder)) {
    return false;
  }
  const Split app = split(path.substr(folder.size()));
  if (isSameOrInside(app.rest, "cache")) {
    return false;
  }
  return std::ranges::any_of(
      std::array{places_.dataHome + "/flatpak/app", std::string("/var/lib/flatpak/app")},
      [&](const std::string& store) { return reader_.exists(appendingPathComponent(store, app.first)); });
}

/// The folder that groups the data of all apps can't go, nor what holds it.
bool StorageTrashGate::holdsBaseFolder(std::string_view path) const {
  return std::ranges::any_of(baseFolders_, [&](const std::string& folder) { return isSameOrInside(folder, path); });
}

std::optional<bool> StorageTrashGate::onExternalDrive(std::string_view path) const {
  if (const auto answer = onMountedDrive(path)) {
    return answer;
  }
  if (!path.starts_with(volumesFolder) || !resolvedVolumePath(path).starts_with(volumesFolder)) {
    return std::nullopt;
  }
  const Split drive = split(path.substr(volumesFolder.size()));
  const Split item = split(drive.rest);
  return !item.first.empty() && !isOneOf(item.first, protectedDriveItems);
}

/// The same rule for drives where Linux mounts them.
std::optional<bool> StorageTrashGate::onMountedDrive(std::string_view path) const {
  const std::string* innermost = nullptr;
  for (const std::string& drive : drives_) {
    if (isSameOrInside(path, drive) && (innermost == nullptr || drive.size() > innermost->size())) {
      innermost = &drive;
    }
  }
  if (innermost == nullptr) {
    return std::nullopt;
  }
  const Split item = split(path.substr(innermost->size()));
  return !item.first.empty() && !isOneOf(item.first, protectedDriveItems) && !isOneOf(item.first, linuxDriveItems) &&
         !item.first.starts_with(".Trash-") && !mustStayOnLinux(path, home_);
}

std::string StorageTrashGate::resolvedVolumePath(std::string_view path) const {
  const Split volume = split(path.substr(volumesFolder.size()));
  if (volume.first.empty()) {
    return reader_.realPath(path).value_or(std::string(path));
  }
  const std::string name = std::string(volumesFolder).append(volume.first);
  const std::lock_guard guard(lock_);
  auto [root, isNew] = volumeRoots_.try_emplace(name);
  if (isNew) {
    root->second = reader_.realPath(name).value_or(name);
  }
  return volume.rest.empty() ? root->second : appendingPathComponent(root->second, volume.rest);
}

bool StorageTrashGate::isRegenerableRoot(std::string_view path) const { return isRegenerableRoot(path, home()); }

bool StorageTrashGate::isRegenerableRoot(std::string_view path, std::string_view home) const {
  if (!isBelow(path, home)) {
    return false;
  }
  const std::string_view relative = path.substr(home.size());
  if (relative == gradleFolder) {
    return std::ranges::none_of(
        gradleSettings, [&](std::string_view name) { return reader_.exists(appendingPathComponent(path, name)); });
  }
  return isOneOf(relative, regenerableRoots) || isConfigCache(relative);
}

bool StorageTrashGate::isInstalledApp(std::string_view path) const {
  const std::string_view folder = parentPath(path);
  return path.ends_with(".app") &&
         (folder == "/Applications" || folder == appendingPathComponent(home(), "Applications"));
}

}  // namespace lumenary
