#include "monitoring/SystemMetricsService.h"

#include <algorithm>
#include <cstdint>

namespace lumenary {
namespace {

/// A counter that went back, as the kernel's may on another processor, didn't move.
std::uint64_t difference(std::uint64_t before, std::uint64_t now) { return now - std::min(before, now); }

void readMemory(const VirtualMemory& memory, SystemSnapshot& snapshot) {
  const std::uint64_t page = memory.pageBytes;
  snapshot.usedMemoryBytes = (memory.active + memory.wired + memory.compressor) * page;
  snapshot.compressedBytes = memory.compressor * page;
  snapshot.appMemoryBytes = (memory.wired + difference(memory.purgeable, memory.internal)) * page;
  snapshot.cachedFilesBytes = (memory.external + memory.purgeable) * page;
}

MemoryPressureLevel levelOf(std::uint32_t told) {
  if (told >= 4) {
    return MemoryPressureLevel::critical;
  }
  return told >= 2 ? MemoryPressureLevel::elevated : MemoryPressureLevel::normal;
}

}  // namespace

SystemSnapshot SystemMetricsService::capture(Date now) {
  const SystemCounters counters = reader_.read();
  SystemSnapshot snapshot;
  snapshot.capturedAt = now;
  snapshot.cpuPercent = cpuUsage(counters.ticks);
  snapshot.totalMemoryBytes = counters.physicalMemoryBytes;
  snapshot.swapUsedBytes = counters.swapUsedBytes.value_or(0);
  snapshot.memoryPressure = levelOf(counters.pressureLevel.value_or(1));
  if (counters.memory) {
    readMemory(*counters.memory, snapshot);
  }
  return snapshot;
}

double SystemMetricsService::cpuUsage(const std::optional<CPUTicks>& ticks) {
  if (!ticks) {
    return 0;
  }
  const CPUTicks before = previousTicks_.value_or(*ticks);
  previousTicks_ = ticks;
  const std::uint64_t busy = difference(before.user, ticks->user) + difference(before.system, ticks->system) +
                             difference(before.nice, ticks->nice);
  const std::uint64_t total = busy + difference(before.idle, ticks->idle);
  return total == 0 ? 0 : std::min(static_cast<double>(busy) / static_cast<double>(total) * 100, 100.0);
}

}  // namespace lumenary
