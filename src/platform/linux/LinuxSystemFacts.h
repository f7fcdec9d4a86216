#pragma once

#include <string_view>
#include <vector>

#include "platform/SystemFacts.h"

namespace lumenary {

class LinuxSystemFacts final : public SystemFacts {
 public:
  std::string kernelRelease() const override;
  std::vector<SwapFile> swapFiles() const override;
  DeletedOpenFiles deletedOpenFiles() const override;
  std::vector<std::string> openPaths() const override;
  std::optional<std::int64_t> reservedBytes(const std::string& path) const override;
  std::optional<RoomOnVolume> room(const std::string&) const override { return std::nullopt; }
};

/// The lines of /proc/swaps that speak of files. The kernel writes blanks in a path as "\040" and the like.
std::vector<SwapFile> parseSwaps(std::string_view swaps);

}  // namespace lumenary
