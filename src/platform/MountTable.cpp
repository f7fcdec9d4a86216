#include "platform/MountTable.h"

#include <algorithm>
#include <array>

#include "base/Path.h"

namespace lumenary {

const Mount* mountHolding(const std::vector<Mount>& mounts, std::string_view path) {
  const Mount* holding = nullptr;
  for (const Mount& mount : mounts) {
    if (!isSameOrInside(path, mount.point)) {
      continue;
    }
    if (holding == nullptr || mount.point.size() > holding->point.size()) {
      holding = &mount;
    }
  }
  return holding;
}

bool keepsInodeNumbers(const Mount& mount) {
  constexpr std::array<std::string_view, 6> withoutLasting = {"aufs", "exfat", "fuseblk", "msdos", "overlay", "vfat"};
  return mount.kind == MountKind::local && std::ranges::find(withoutLasting, mount.type) == withoutLasting.end();
}

std::vector<std::string> mountPointsNotToEnter(const std::vector<Mount>& mounts, std::string_view root) {
  std::vector<std::string> points;
  for (const Mount& mount : mounts) {
    if (mount.kind == MountKind::local || mount.point == root) {
      continue;
    }
    if (isSameOrInside(mount.point, root)) {
      points.push_back(mount.point);
    }
  }
  return points;
}

}  // namespace lumenary
