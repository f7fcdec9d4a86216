#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "base/Date.h"

namespace lumenary {

/// How much of the startup disk was in use at one moment.
struct DiskSample {
  Date date;
  std::int64_t usedBytes = 0;

  bool operator==(const DiskSample&) const = default;
};

/// When the startup disk will be full. Its caution is the point: one download, one cleanup or too little history must
/// not give an alarming number.
namespace DiskForecast {

/// Days from `now`; none where the history doesn't support an answer: fewer than four samples of the last 30 days, less
/// than three days between them, one jump that makes most of the growth, less than 100 MB a day, or more than 180 days
/// to go. The samples may come in any order.
std::optional<double> daysUntilFull(std::span<const DiskSample> samples, std::int64_t availableBytes, Date now);

/// "Full in about 4 weeks".
std::string phrase(double days);

}  // namespace DiskForecast

}  // namespace lumenary
