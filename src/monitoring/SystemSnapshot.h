#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "base/Date.h"

namespace lumenary {

enum class MemoryPressureLevel : std::uint8_t { normal, elevated, critical };
inline constexpr std::array<std::string_view, 3> memoryPressureTexts = {"Normal", "Elevated", "Critical"};

/// The machine at one moment. What couldn't be read is 0.
struct SystemSnapshot {
  Date capturedAt{};
  double cpuPercent = 0;  ///< 0 to 100, all cores as one
  std::uint64_t usedMemoryBytes = 0;
  std::uint64_t totalMemoryBytes = 0;
  MemoryPressureLevel memoryPressure = MemoryPressureLevel::normal;
  std::uint64_t swapUsedBytes = 0;
  std::uint64_t appMemoryBytes = 0;
  std::uint64_t compressedBytes = 0;
  std::uint64_t cachedFilesBytes = 0;

  bool operator==(const SystemSnapshot&) const = default;
};

}  // namespace lumenary
