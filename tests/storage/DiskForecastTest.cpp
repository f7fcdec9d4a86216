#include <gtest/gtest.h>

#include <cmath>

#include "storage/DiskForecast.h"

namespace lumenary {
namespace {

using Days = std::chrono::duration<double, std::chrono::days::period>;

constexpr std::int64_t gigabyte = 1'000'000'000;
const Date now = *parseISO8601("2026-11-23T12:00:00Z");

Date daysAgo(double days) { return now - std::chrono::round<Date::duration>(Days(days)); }

/// A sample every `step` days up to now, the first with 100 GB and each next one with that many bytes more.
std::vector<DiskSample> history(double step, const std::vector<std::int64_t>& growth) {
  std::vector<DiskSample> samples{{daysAgo(step * static_cast<double>(growth.size())), 100 * gigabyte}};
  for (const std::int64_t bytes : growth) {
    const double left = step * static_cast<double>(growth.size() - samples.size());
    samples.push_back({daysAgo(left), samples.back().usedBytes + bytes});
  }
  return samples;
}

std::optional<double> rounded(std::optional<double> days) {
  return days ? std::optional(std::round(*days * 100) / 100) : days;
}

TEST(DiskForecast, AnswersOnlyWhereTheHistorySupportsIt) {
  const std::vector<std::int64_t> steady(10, gigabyte);
  std::vector<std::int64_t> withCleanup = steady;
  withCleanup.insert(withCleanup.begin() + 5, -5 * gigabyte);
  std::vector<std::int64_t> withJump = steady;
  withJump[5] = 24 * gigabyte;  // 24 of 33: more than 0.7
  const std::vector<DiskSample> inOrder = history(1, steady);
  const auto none = std::optional<double>();
  struct Case {
    const char* name;
    std::vector<DiskSample> samples;
    std::int64_t available;
    std::optional<double> days;
  };
  const Case cases[] = {
      {"a gigabyte a day", history(1, steady), 30 * gigabyte, 30.0},
      {"in any order", {inOrder.rbegin(), inOrder.rend()}, 30 * gigabyte, 30.0},
      {"a cleanup in the middle", history(1, withCleanup), 30 * gigabyte, 34.32},
      {"one jump", history(1, withJump), 30 * gigabyte, none},
      {"nothing left", history(1, steady), 0, 0.0},
      {"less than nothing left", history(1, steady), -5, 0.0},
      {"180 days", history(1, steady), 180 * gigabyte, 180.0},
      {"200 days", history(1, steady), 200 * gigabyte, none},
      {"50 MB a day", history(1, std::vector<std::int64_t>(10, gigabyte / 20)), 1, none},
      {"100 MB a day", history(1, std::vector<std::int64_t>(10, gigabyte / 10)), gigabyte, 10.0},
      {"only falling", history(1, std::vector<std::int64_t>(10, -gigabyte / 2)), gigabyte, none},
      {"three samples", history(2, {gigabyte, gigabyte}), gigabyte, none},
      {"four in 3 days", history(1, {gigabyte, gigabyte, gigabyte}), gigabyte, 1.0},
      {"four in less", history(0.99, {gigabyte, gigabyte, gigabyte}), gigabyte, none},
      {"at one moment", history(0, steady), gigabyte, none},
      {"older than 30 days", history(20, {gigabyte, gigabyte, gigabyte}), gigabyte, none},
      {"none", {}, gigabyte, none},
  };
  for (const auto& [name, samples, available, days] : cases) {
    EXPECT_EQ(rounded(DiskForecast::daysUntilFull(samples, available, now)), days) << name;
  }
}

TEST(DiskForecast, CountsAFallOfAGigabyteAndLeavesALargerOneOut) {
  const auto slopeDays = [](std::int64_t fall) {
    return *DiskForecast::daysUntilFull(history(1, {gigabyte, gigabyte, fall, gigabyte, gigabyte}), gigabyte, now);
  };
  EXPECT_GT(slopeDays(-gigabyte), 1.4) << "the trend is slower with it";
  EXPECT_LT(slopeDays(-gigabyte - 1), 1.4);
}

TEST(DiskForecast, IsToldInRoundWords) {
  const std::pair<double, const char*> cases[] = {
      {0, "Full in about a day"},      {1.49, "Full in about a day"},  {1.5, "Full in about 2 days"},
      {13.9, "Full in about 14 days"}, {14, "Full in about 2 weeks"},  {30, "Full in about 4 weeks"},
      {59.9, "Full in about 9 weeks"}, {60, "Full in about 2 months"}, {180, "Full in about 6 months"}};
  for (const auto& [days, words] : cases) {
    EXPECT_EQ(DiskForecast::phrase(days), words);
  }
}

}  // namespace
}  // namespace lumenary
