#pragma once

#include <string_view>
#include <vector>

#include "platform/MountTable.h"

namespace lumenary {

/// The mounts as /proc/self/mountinfo tells them.
class LinuxMountTable final : public MountTable {
 public:
  SystemResult<std::vector<Mount>> mounts() const override;
};

/// Reads the text of a mountinfo file (proc_pid_mountinfo(5)). Of several mounts at one point the last stays; a line
/// that isn't understood is left out.
std::vector<Mount> parseMountInfo(std::string_view text);

}  // namespace lumenary
