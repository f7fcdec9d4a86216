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
constexpr std::array<std::string_view, 4> notBrowsableTypes = {"squashfs", "overlay", "tmpfs", "ramfs"};

bool standsWhereDrivesAre(std::string_view point, const Places& places) {
  return point.starts_with("/Volumes/") ||
         std::ranges::any_of(places.driveFolders, [&](const auto& folder) { return isSameOrInside(point, folder); });
}

/// An image that is mounted lies in a file of another volume already.
bool isBrowsable(const Mount& mount) {
  return std::ranges::find(notBrowsableTypes, mount.type) == notBrowsableTypes.end() &&
         !mount.source.starts_with("/dev/loop");
}

}  // namespace

std::vector<std::string> drivesOfPerson(const std::vector<Mount>& mounts, const Places& places) {
  std::vector<std::string> points;
  for (const Mount& mount : mounts) {
    const bool holdsHome = isSameOrInside(places.home, mount.point);
    if (mount.kind == MountKind::local && isBrowsable(mount) && standsWhereDrivesAre(mount.point, places) &&
        !holdsHome) {
      points.push_back(mount.point);
    }
  }
  return points;
}

std::optional<VolumeSnapshot> VolumeMetricsService::capture(const std::string& path) const {
  const auto mounts = mountTable_.mounts();
  const auto mountOf = [&](const std::string& at) { return mounts ? mountHolding(*mounts, at) : nullptr; };
  // Before and after links are followed: following one already waits for the volume on which it stands.
  const Mount* mount = mountOf(path);
  if (mount != nullptr && mount->kind == MountKind::local) {
    mount = mountOf(reader_.realPath(path).value_or(path));
  }
  if (mount == nullptr || mount->kind != MountKind::local) {
    return std::nullopt;
  }
  const auto capacity = volumes_.capacity(path);
  if (!capacity) {
    return std::nullopt;
  }
  return VolumeSnapshot{.name = volumes_.label(*mount).value_or("Macintosh HD"),
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
  const auto isMain = [&](const Mount& mount) {
    return mount.point == "/" || (&mount == holdingHome && isBrowsable(mount));
  };
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
