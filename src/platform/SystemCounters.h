#pragma once

#include <cstdint>
#include <optional>

namespace lumenary {

/// Time that all processors together spent since the start, in any unit that stays the same.
struct CPUTicks {
  std::uint64_t user = 0;
  std::uint64_t system = 0;
  std::uint64_t idle = 0;
  std::uint64_t nice = 0;  ///< in processes of low priority

  bool operator==(const CPUTicks&) const = default;
};

/// What the memory holds, in pages. The names are those of the kernels that have these counters; another fills in what
/// comes closest.
struct VirtualMemory {
  std::uint64_t pageBytes = 0;
  std::uint64_t active = 0;      ///< in use, and neither wired nor compressed
  std::uint64_t wired = 0;       ///< can't leave the memory
  std::uint64_t compressor = 0;  ///< holds compressed pages
  std::uint64_t internal = 0;    ///< of no file
  std::uint64_t purgeable = 0;   ///< may be dropped at once
  std::uint64_t external = 0;    ///< of files

  bool operator==(const VirtualMemory&) const = default;
};

struct SystemCounters {
  std::optional<CPUTicks> ticks{};
  std::optional<VirtualMemory> memory{};
  std::uint64_t physicalMemoryBytes = 0;
  std::optional<std::uint64_t> swapUsedBytes{};
  std::optional<std::uint32_t> pressureLevel{};  ///< 1 is none, 2 some, 4 a great deal

  bool operator==(const SystemCounters&) const = default;
};

class SystemCountersReader {
 public:
  virtual ~SystemCountersReader() = default;
  /// The counters now; what can't be read is missing. Doesn't wait; one caller at a time.
  virtual SystemCounters read() = 0;
};

}  // namespace lumenary
