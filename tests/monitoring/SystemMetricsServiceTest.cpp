#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "monitoring/SystemHistory.h"
#include "monitoring/SystemMetricsService.h"
#include "platform/linux/LinuxSystemCounters.h"

namespace lumenary {
namespace {

class FakeCounters final : public SystemCountersReader {
 public:
  SystemCounters next;
  SystemCounters read() override { return next; }
};

TEST(SystemMetricsService, TellsTheLoadSinceTheReadingBefore) {
  FakeCounters counters;
  SystemMetricsService service(counters);
  const std::vector<std::pair<std::optional<CPUTicks>, double>> readings = {
      {CPUTicks{.user = 100, .system = 50, .idle = 1000, .nice = 10}, 0},   // the first
      {CPUTicks{.user = 110, .system = 55, .idle = 1080, .nice = 15}, 20},  // 20 of 100
      {CPUTicks{.user = 110, .system = 55, .idle = 1080, .nice = 15}, 0},   // no tick between
      {std::nullopt, 0},                                                    // can't be read, and is passed over
      {CPUTicks{.user = 120, .system = 55, .idle = 1080, .nice = 15}, 100},
      {CPUTicks{.user = 130, .system = 50, .idle = 1090, .nice = 15}, 50},  // a counter went back
  };
  for (const auto& [ticks, percent] : readings) {
    counters.next.ticks = ticks;
    EXPECT_DOUBLE_EQ(service.capture({}).cpuPercent, percent);
  }
}

TEST(SystemMetricsService, CountsMemoryInBytes) {
  FakeCounters counters;
  counters.next.physicalMemoryBytes = 1'000'000;
  counters.next.swapUsedBytes = 77;
  counters.next.memory = VirtualMemory{
      .pageBytes = 10, .active = 5, .wired = 3, .compressor = 2, .internal = 9, .purgeable = 4, .external = 6};
  SystemMetricsService service(counters);
  const Date now{std::chrono::seconds(9)};
  EXPECT_EQ(service.capture(now), (SystemSnapshot{.capturedAt = now,
                                                  .usedMemoryBytes = 100,
                                                  .totalMemoryBytes = 1'000'000,
                                                  .swapUsedBytes = 77,
                                                  .appMemoryBytes = 80,
                                                  .compressedBytes = 20,
                                                  .cachedFilesBytes = 100}));
  counters.next.memory->purgeable = 10;
  EXPECT_EQ(service.capture(now).appMemoryBytes, 30U) << "less internal than purgeable";
  counters.next.memory.reset();
  EXPECT_EQ(service.capture(now),
            (SystemSnapshot{.capturedAt = now, .totalMemoryBytes = 1'000'000, .swapUsedBytes = 77}));
}

TEST(SystemMetricsService, ReadsThePressure) {
  FakeCounters counters;
  SystemMetricsService service(counters);
  using enum MemoryPressureLevel;
  const std::vector<std::pair<std::optional<std::uint32_t>, MemoryPressureLevel>> levels = {
      {std::nullopt, normal}, {0, normal}, {1, normal}, {2, elevated}, {3, elevated}, {4, critical}, {5, critical}};
  for (const auto& [told, level] : levels) {
    counters.next.pressureLevel = told;
    EXPECT_EQ(service.capture({}).memoryPressure, level);
  }
}

std::vector<SystemSnapshot> readings(std::size_t count) {
  std::vector<SystemSnapshot> list(count);
  for (std::size_t index = 0; index < count; ++index) {
    list[index] = {.capturedAt = Date(std::chrono::seconds(index)),
                   .cpuPercent = 10,
                   .usedMemoryBytes = 50,
                   .totalMemoryBytes = 100};
  }
  return list;
}

TEST(SystemHistory, ThinsALongSeriesWithoutLosingASpike) {
  EXPECT_EQ(SystemHistory::chartSamples(readings(240)), readings(240));
  EXPECT_EQ(SystemHistory::chartSamples(readings(241)).size(), 61U) << "the first of equal values stands for a stretch";

  std::vector<SystemSnapshot> spiky = readings(1800);
  spiky[700].cpuPercent = 99;
  spiky[703].cpuPercent = 1;
  spiky[705].usedMemoryBytes = 90;
  spiky[709].totalMemoryBytes = 0;
  const auto samples = SystemHistory::chartSamples(spiky);
  EXPECT_LE(samples.size(), 238U);
  EXPECT_EQ(samples.front(), spiky.front());
  EXPECT_EQ(samples.back(), spiky.back());
  for (const std::size_t index : {700U, 703U, 709U}) {
    EXPECT_NE(std::ranges::find(samples, spiky[index]), samples.end()) << index;
  }
  EXPECT_TRUE(std::ranges::is_sorted(samples, {}, &SystemSnapshot::capturedAt));
}

TEST(SystemHistory, KeepsAnHourAndAtMost1800Readings) {
  std::vector<SystemSnapshot> history = readings(1800);
  SystemHistory::append(history, {.capturedAt = Date(std::chrono::seconds(1800))});
  EXPECT_EQ(history.size(), 1800U);
  EXPECT_EQ(history.front().capturedAt, Date(std::chrono::seconds(1)));
  SystemHistory::append(history, {.capturedAt = Date(std::chrono::seconds(3600 + 1700))});
  EXPECT_EQ(history.front().capturedAt, Date(std::chrono::seconds(1700))) << "an hour old to the second stays";
}

TEST(LinuxSystemCounters, ReadsWhatTheKernelWrites) {
  EXPECT_EQ(parseCPUTicks("cpu  100 20 30 400 50 6 7 80 9 1\ncpu0 1 2 3\n"),
            (CPUTicks{.user = 100, .system = 43, .idle = 450, .nice = 20}));
  EXPECT_EQ(parseCPUTicks("intr 5"), std::nullopt);

  const auto info = parseMemoryInfo(
      "MemTotal:       1000 kB\nMemFree:  50 kB\nMemAvailable:    400 kB\nBuffers:  20 kB\nCached:  300 kB\n"
      "Shmem: 40 kB\nAnonPages: 200 kB\nSReclaimable: 30 kB\nSUnreclaim: 25 kB\nKernelStack: 5 kB\nPageTables: 10 kB\n"
      "SwapTotal: 500 kB\nSwapFree: 480 kB\nZswap: 8 kB\nHugePages_Total:       0\n");
  ASSERT_TRUE(info);
  EXPECT_EQ(*info, (MemoryInfo{.memory = {.pageBytes = 1024,
                                          .active = 552,
                                          .wired = 40,
                                          .compressor = 8,
                                          .internal = 270,
                                          .purgeable = 30,
                                          .external = 280},
                               .totalBytes = 1'024'000,
                               .availableBytes = 409'600,
                               .swapUsedBytes = 20'480}));
  EXPECT_EQ(parseMemoryInfo("no such thing"), std::nullopt);
}

TEST(LinuxSystemCounters, TellsHowTightTheMemoryIs) {
  const auto level = [](const char* some, const char* full, std::uint64_t available) {
    const std::string text = std::string("some avg10=") + some +
                             " avg60=99.00 avg300=99.00 total=9\nfull avg10=" + full +
                             " avg60=99.00 avg300=99.00 total=9\n";
    return pressureLevel(text, {.memory = {}, .totalBytes = 1000, .availableBytes = available, .swapUsedBytes = 0});
  };
  EXPECT_EQ(level("9.99", "9.99", 500), 1U);
  EXPECT_EQ(level("10.00", "0.00", 500), 2U);
  EXPECT_EQ(level("40.00", "10.00", 500), 4U);
  EXPECT_EQ(level("0.00", "0.00", 99), 2U);
  EXPECT_EQ(level("0.00", "0.00", 49), 4U);
  EXPECT_EQ(pressureLevel("", {.memory = {}, .totalBytes = 1000, .availableBytes = 500, .swapUsedBytes = 0}), 1U);
}

TEST(LinuxSystemCounters, ReadsThisMachine) {
  LinuxSystemCounters reader;
  SystemMetricsService service(reader);
  const SystemSnapshot snapshot = service.capture({});
  EXPECT_GT(snapshot.totalMemoryBytes, 64U * 1024 * 1024);
  EXPECT_GT(snapshot.usedMemoryBytes, 0U);
  EXPECT_LT(snapshot.usedMemoryBytes, snapshot.totalMemoryBytes);
  EXPECT_GT(snapshot.appMemoryBytes, 0U);
  EXPECT_GT(reader.read().ticks->idle, 0U);
}

}  // namespace
}  // namespace lumenary
