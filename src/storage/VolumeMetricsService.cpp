#include "storage/VolumeMetricsService.h"

#include <algorithm>
#include <array>
#include <set>
#include <tuple>
#include <utility>

#include "base/Path.h"
#include "base/StableSort.h"

namespace lumenary {
namespace {

/// File systems that hold parts of the system, or nothing that lasts.
constexpr std::array<std::string_view, 6> notBrowsableTypes = {"squashfs", "overlay",  "tmpfs",
                                                               "ramfs",    "devtmpfs", "hugetlbfs"};

bool standsWhereDrivesAre(std::string_view point, const Places& places) {
  return point.starts_with("/Volumes/") ||
         std::ranges::any_of(places.driveFolders, [&](const auto& folder) { return isSameOrInside(point, folder); });
}

bool isBrowsable(const Mount& mount) {
  return std::ranges::find(notBrowsableTypes, mount.type) == notBrowsableTypes.end();
}

}  // namespace

std::optional<VolumeSnapshot> VolumeMetricsService::capture(const std::string& path) const {
  const auto mounts = mountTable_.mounts();
  const Mount* const mount = mounts ? mountHolding(*mounts, path) : nullptr;
  if (mount != nullptr && mount->kind != MountKind::local) {
    return std::nullopt;
  }
  const auto capacity = volumes_.capacity(path);
  if (!capacity) {
    return std::nullopt;
  }
  const auto label = mount == nullptr ? std::nullopt : volumes_.label(*mount);
  return VolumeSnapshot{.name = label.value_or("Macintosh HD"),
                        .totalBytes = capacity->totalBytes,
                        .availableBytes = capacity->availableBytes};
}

std::vector<DriveInfo> VolumeMetricsService::mountedDrives() const {
  const auto mounts = mountTable_.mounts();
  if (!mounts) {
    return {};
  }
  const Mount* const holdingHome =
      places_.home.empty() ? nullptr : mountHolding(*mounts, reader_.realPath(places_.home).value_or(places_.home));
  // These two are both offered even if they are parts of one volume, as a scan of one doesn't enter the other. Whatever
  // else shows the same volume is left out.
  const auto isMain = [&](const Mount& mount) { return mount.point == "/" || &mount == holdingHome; };
  std::set<std::string> devices;
  for (const Mount& mount : *mounts) {
    if (isMain(mount)) {
      devices.insert(mount.device);
    }
  }
  std::vector<DriveInfo> drives;
  for (const Mount& mount : *mounts) {
    const bool isOther = isBrowsable(mount) && standsWhereDrivesAre(mount.point, places_);
    if (mount.kind != MountKind::local || (!isMain(mount) && !isOther) ||
        (!isMain(mount) && !devices.insert(mount.device).second)) {
      continue;
    }
    drives.push_back({.url = {.path = mount.point, .isFolder = true},
                      .name = volumes_.label(mount).value_or(std::string(lastPathComponent(mount.point))),
                      .isStartup = mount.point == "/",
                      .isRemovable = volumes_.isRemovable(mount)});
  }
  return stableSorted(std::move(drives), [](const DriveInfo& drive) {
    return std::tuple(!drive.isStartup, std::string_view(drive.name));
  });
}

}  // namespace lumenary
