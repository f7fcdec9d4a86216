#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/SystemError.h"

namespace lumenary {

enum class MountKind : std::uint8_t {
  local,      ///< a file system on a disk, or in memory for the person's own files
  network,    ///< may stop answering
  userspace,  ///< FUSE: may stop answering
  kernel,     ///< proc, sysfs, automounts and their like: no files of a person
};

struct Mount {
  std::uint64_t id = 0;  ///< the kernel's id of the mount
  std::string point;     ///< where it is mounted, bytes as they are
  std::string type;      ///< the file system's name
  MountKind kind = MountKind::local;
  std::string device{};  ///< the file system's number, "8:1": the same for all mounts of one
  std::string source{};  ///< what is mounted: "/dev/sda1", or any word

  bool operator==(const Mount&) const = default;
};

/// The mounts of this process as they are now, a later one hiding an earlier one at the same point.
class MountTable {
 public:
  virtual ~MountTable() = default;
  virtual SystemResult<std::vector<Mount>> mounts() const = 0;
};

/// The mount that holds `path` (absolute, no links in it): the one with the longest point; none in an empty list.
const Mount* mountHolding(const std::vector<Mount>& mounts, std::string_view path);

/// Whether a file has the same inode number after it was closed, or after a restart. FAT has none on the disk, and what
/// is composed of several file systems or served by another process may make them up.
bool keepsInodeNumbers(const Mount& mount);

/// Points strictly below `root` at which a walk must not go on: kernel, network and userspace mounts.
std::vector<std::string> mountPointsNotToEnter(const std::vector<Mount>& mounts, std::string_view root);

}  // namespace lumenary
