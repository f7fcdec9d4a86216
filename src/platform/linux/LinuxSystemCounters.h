#pragma once

#include <optional>
#include <string_view>

#include "platform/Descriptor.h"
#include "platform/SystemCounters.h"

namespace lumenary {

/// The first line of /proc/stat. What waits for a disk is idle; interrupts are the system's; time stolen by another
/// guest of the machine is nobody's. None for another text.
std::optional<CPUTicks> parseCPUTicks(std::string_view stat);

/// The lines of /proc/meminfo as pages of 1 KiB: what isn't available is in use; slabs that can't be reclaimed, page
/// tables, kernel stacks and locked pages are wired; the store of compressed swap is the compressor; reclaimable slabs
/// can be dropped at once. Also the swap in use. Missing lines count as 0; without MemTotal there is nothing.
struct MemoryInfo {
  VirtualMemory memory;
  std::uint64_t totalBytes = 0;
  std::uint64_t availableBytes = 0;
  std::uint64_t swapUsedBytes = 0;

  bool operator==(const MemoryInfo&) const = default;
};
std::optional<MemoryInfo> parseMemoryInfo(std::string_view meminfo);

/// How tight the memory is. The kernel tells how much of the last ten seconds something ("some") and everything
/// ("full") waited for memory (/proc/pressure/memory): a tenth of "some" is 2, a tenth of "full" is 4. Where it isn't
/// told, or before anything waits: less than a tenth of the memory available is 2, a twentieth 4.
std::uint32_t pressureLevel(std::string_view pressure, const MemoryInfo& info);

/// Reads below /proc, from files that stay open from the first reading on: a reading is three calls.
class LinuxSystemCounters final : public SystemCountersReader {
 public:
  SystemCounters read() override;

 private:
  Descriptor stat_;
  Descriptor memory_;
  Descriptor pressure_;
  std::uint64_t physicalMemoryBytes_ = 0;
};

}  // namespace lumenary
