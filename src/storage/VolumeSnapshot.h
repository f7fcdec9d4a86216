#pragma once

#include <cstdint>
#include <string>

namespace lumenary {

/// How big and how full a volume is at one moment.
struct VolumeSnapshot {
  std::string name;
  std::int64_t totalBytes = 0;
  std::int64_t availableBytes = 0;

  bool operator==(const VolumeSnapshot&) const = default;
};

}  // namespace lumenary
