#include "monitoring/SystemHistory.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <set>

namespace lumenary::SystemHistory {
namespace {

constexpr std::size_t mostUnthinned = 240;
constexpr std::size_t buckets = 59;
constexpr std::size_t mostKept = 1800;
constexpr std::chrono::hours longestKept{1};

double usedFraction(const SystemSnapshot& reading) {
  return static_cast<double>(reading.usedMemoryBytes) /
         static_cast<double>(std::max<std::uint64_t>(reading.totalMemoryBytes, 1));
}

}  // namespace

std::vector<SystemSnapshot> chartSamples(const std::vector<SystemSnapshot>& readings) {
  if (readings.size() <= mostUnthinned) {
    return readings;
  }
  const std::size_t last = readings.size() - 1;
  const std::size_t between = readings.size() - 2;
  std::set<std::size_t> chosen = {0, last};
  for (std::size_t bucket = 0; bucket < buckets; ++bucket) {
    const auto begin = readings.begin() + static_cast<std::ptrdiff_t>((bucket * between / buckets) + 1);
    const auto end = readings.begin() + static_cast<std::ptrdiff_t>(((bucket + 1) * between / buckets) + 1);
    const auto choose = [&](auto found) { chosen.insert(static_cast<std::size_t>(found - readings.begin())); };
    choose(std::ranges::min_element(begin, end, {}, &SystemSnapshot::cpuPercent));
    choose(std::ranges::max_element(begin, end, {}, &SystemSnapshot::cpuPercent));
    choose(std::ranges::min_element(begin, end, {}, usedFraction));
    choose(std::ranges::max_element(begin, end, {}, usedFraction));
  }
  std::vector<SystemSnapshot> samples;
  samples.reserve(chosen.size());
  for (const std::size_t index : chosen) {
    samples.push_back(readings[index]);
  }
  return samples;
}

void append(std::vector<SystemSnapshot>& history, const SystemSnapshot& reading) {
  history.push_back(reading);
  std::erase_if(history, [&](const SystemSnapshot& old) { return reading.capturedAt - old.capturedAt > longestKept; });
  if (history.size() > mostKept) {
    history.erase(history.begin(), history.end() - static_cast<std::ptrdiff_t>(mostKept));
  }
}

}  // namespace lumenary::SystemHistory
