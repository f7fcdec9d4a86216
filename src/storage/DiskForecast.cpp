#include "storage/DiskForecast.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <vector>

#include "base/StableSort.h"

namespace lumenary::DiskForecast {
namespace {

using std::chrono::seconds;

constexpr seconds longestMemory(2'592'000);  // 30 days
constexpr seconds shortestHistory(259'200);  // 3 days
constexpr std::size_t fewestSamples = 4;
constexpr double largestCountedFall = 1e9;
constexpr double largestShareOfOneGrowth = 0.7;
constexpr double slowestGrowth = 1e8;  // bytes a day
constexpr double farthestDays = 180;

struct Point {
  double days = 0;   ///< since the first sample
  double bytes = 0;  ///< grown since then
};

struct Growth {
  std::vector<Point> curve;
  double total = 0;
  double largest = 0;  ///< between two samples
};

std::vector<DiskSample> recentSamples(std::span<const DiskSample> samples, Date now) {
  std::vector<DiskSample> recent;
  std::ranges::copy_if(samples, std::back_inserter(recent),
                       [&](const DiskSample& sample) { return sample.date >= now - longestMemory; });
  return stableSorted(std::move(recent), [](const DiskSample& sample) { return sample.date; });
}

double daysBetween(Date earlier, Date later) {
  return std::chrono::duration<double, std::chrono::days::period>(later - earlier).count();
}

/// A large fall is a cleanup and is left out, so that making room doesn't read as another trend.
Growth growthOf(const std::vector<DiskSample>& samples) {
  Growth growth{.curve = {{}}};
  for (std::size_t index = 1; index < samples.size(); ++index) {
    const double delta =
        static_cast<double>(samples[index].usedBytes) - static_cast<double>(samples[index - 1].usedBytes);
    const double level = growth.curve.back().bytes;
    growth.curve.push_back({.days = daysBetween(samples.front().date, samples[index].date),
                            .bytes = delta >= -largestCountedFall ? level + delta : level});
    if (delta > 0) {
      growth.total += delta;
      growth.largest = std::max(growth.largest, delta);
    }
  }
  return growth;
}

/// Of the straight line through the points by least squares; none where they stand at one moment.
std::optional<double> slopeOf(const std::vector<Point>& points) {
  const auto count = static_cast<double>(points.size());
  Point mean;
  for (const Point& point : points) {
    mean.days += point.days / count;
    mean.bytes += point.bytes / count;
  }
  double squares = 0;
  double products = 0;
  for (const Point& point : points) {
    squares += (point.days - mean.days) * (point.days - mean.days);
    products += (point.days - mean.days) * (point.bytes - mean.bytes);
  }
  return squares > 0 ? std::optional(products / squares) : std::nullopt;
}

std::string inAbout(double count, const char* unit) {
  return "Full in about " + std::to_string(std::lround(count)) + unit;
}

}  // namespace

std::optional<double> daysUntilFull(std::span<const DiskSample> samples, std::int64_t availableBytes, Date now) {
  const std::vector<DiskSample> recent = recentSamples(samples, now);
  if (recent.size() < fewestSamples || recent.back().date - recent.front().date < shortestHistory) {
    return std::nullopt;
  }
  const Growth growth = growthOf(recent);
  if (growth.total <= 0 || growth.largest / growth.total > largestShareOfOneGrowth) {
    return std::nullopt;
  }
  const std::optional<double> slope = slopeOf(growth.curve);
  if (!slope || *slope < slowestGrowth) {
    return std::nullopt;
  }
  const double days = static_cast<double>(std::max<std::int64_t>(availableBytes, 0)) / *slope;
  return days <= farthestDays ? std::optional(days) : std::nullopt;
}

std::string phrase(double days) {
  if (days < 1.5) {
    return "Full in about a day";
  }
  if (days < 14) {
    return inAbout(days, " days");
  }
  return days < 60 ? inAbout(days / 7, " weeks") : inAbout(days / 30, " months");
}

}  // namespace lumenary::DiskForecast
