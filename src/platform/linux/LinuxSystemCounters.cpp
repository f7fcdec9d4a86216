#include "platform/linux/LinuxSystemCounters.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>

#include "platform/linux/ProcText.h"

namespace lumenary {
namespace {

constexpr std::uint64_t kibibyte = 1024;

Descriptor openForReading(const char* path) { return Descriptor(::open(path, O_RDONLY | O_CLOEXEC)); }

/// The whole per cent behind "avg10=" in the line that begins with `name`.
std::uint32_t averageOfTenSeconds(std::string_view pressure, std::string_view name) {
  while (!pressure.empty()) {
    std::string_view line = takeLine(pressure);
    if (takeWord(line) == name) {
      const std::string_view average = takeWord(line);
      constexpr std::string_view key = "avg10=";
      return average.starts_with(key) ? numberAtFront<std::uint32_t>(average.substr(key.size())) : 0;
    }
  }
  return 0;
}

std::uint64_t lessOrZero(std::uint64_t from, std::uint64_t amount) { return from - std::min(from, amount); }

}  // namespace

std::optional<CPUTicks> parseCPUTicks(std::string_view stat) {
  std::string_view line = takeLine(stat);
  if (takeWord(line) != "cpu") {
    return std::nullopt;
  }
  CPUTicks ticks;
  ticks.user = takeNumber(line);
  ticks.nice = takeNumber(line);
  ticks.system = takeNumber(line);
  ticks.idle = takeNumber(line);
  ticks.idle += takeNumber(line);
  ticks.system += takeNumber(line);
  ticks.system += takeNumber(line);
  return ticks;
}

std::optional<MemoryInfo> parseMemoryInfo(std::string_view meminfo) {
  std::uint64_t total = 0;
  std::uint64_t available = 0;
  std::uint64_t buffers = 0;
  std::uint64_t cached = 0;
  std::uint64_t anonymous = 0;
  std::uint64_t shared = 0;
  std::uint64_t reclaimable = 0;
  std::uint64_t unreclaimable = 0;
  std::uint64_t stacks = 0;
  std::uint64_t tables = 0;
  std::uint64_t locked = 0;
  std::uint64_t compressed = 0;
  std::uint64_t swap = 0;
  std::uint64_t swapFree = 0;
  struct Line {
    std::string_view name;
    std::uint64_t& value;
  };
  const std::array lines{Line{"MemTotal:", total},           Line{"MemAvailable:", available},
                         Line{"Buffers:", buffers},          Line{"Cached:", cached},
                         Line{"AnonPages:", anonymous},      Line{"Shmem:", shared},
                         Line{"SReclaimable:", reclaimable}, Line{"SUnreclaim:", unreclaimable},
                         Line{"KernelStack:", stacks},       Line{"PageTables:", tables},
                         Line{"Mlocked:", locked},           Line{"Zswap:", compressed},
                         Line{"SwapTotal:", swap},           Line{"SwapFree:", swapFree}};
  while (!meminfo.empty()) {
    std::string_view line = takeLine(meminfo);
    const std::string_view name = takeWord(line);
    for (const Line& known : lines) {
      if (known.name == name) {
        known.value = takeNumber(line);
      }
    }
  }
  if (total == 0) {
    return std::nullopt;
  }
  MemoryInfo info;
  VirtualMemory& memory = info.memory;
  memory.pageBytes = kibibyte;
  memory.wired = unreclaimable + stacks + tables + locked;
  memory.compressor = compressed;
  memory.active = lessOrZero(lessOrZero(total, available), memory.wired + compressed);
  memory.purgeable = reclaimable;
  // Locked pages of programs are wired, so they aren't counted a second time; purgeable ones are taken off again.
  memory.internal = lessOrZero(anonymous + shared, locked) + reclaimable;
  memory.external = lessOrZero(buffers + cached, shared);
  info.totalBytes = total * kibibyte;
  info.availableBytes = available * kibibyte;
  info.swapUsedBytes = lessOrZero(swap, swapFree) * kibibyte;
  return info;
}

std::uint32_t pressureLevel(std::string_view pressure, const MemoryInfo& info) {
  constexpr std::uint32_t tenth = 10;
  const bool isTight = info.availableBytes < info.totalBytes / 10;
  const bool isVeryTight = info.availableBytes < info.totalBytes / 20;
  if (averageOfTenSeconds(pressure, "full") >= tenth || isVeryTight) {
    return 4;
  }
  return averageOfTenSeconds(pressure, "some") >= tenth || isTight ? 2 : 1;
}

SystemCounters LinuxSystemCounters::read() {
  if (!stat_) {
    stat_ = openForReading("/proc/stat");
    memory_ = openForReading("/proc/meminfo");
    pressure_ = openForReading("/proc/pressure/memory");
    physicalMemoryBytes_ = static_cast<std::uint64_t>(std::max(::sysconf(_SC_PHYS_PAGES), 0L)) *
                           static_cast<std::uint64_t>(std::max(::sysconf(_SC_PAGESIZE), 0L));
  }
  std::array<char, 4096> buffer{};
  SystemCounters counters;
  counters.physicalMemoryBytes = physicalMemoryBytes_;
  counters.ticks = parseCPUTicks(readFromStart(stat_.number(), buffer));
  if (const auto info = parseMemoryInfo(readFromStart(memory_.number(), buffer))) {
    counters.memory = info->memory;
    counters.physicalMemoryBytes = info->totalBytes;
    counters.swapUsedBytes = info->swapUsedBytes;
    counters.pressureLevel = pressureLevel(readFromStart(pressure_.number(), buffer), *info);
  }
  return counters;
}

}  // namespace lumenary
