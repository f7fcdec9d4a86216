#pragma once

#include <chrono>
#include <string>

#include "base/Date.h"

namespace lumenary {

/// `now` less `date`; the limits stand for what no number of microseconds holds.
std::chrono::microseconds ageOf(Date date, Date now);

enum class AgeSuffix : bool { none, ago };

/// How long ago `date` was, in the largest whole unit: "Today", "1 day", "30 days", "1 month", "11 months", "1 year".
/// A month is 30 days, a year 365; what lies ahead of `now` is today. With the suffix "ago" stands behind all but
/// "Today".
std::string relativeAge(Date date, Date now, AgeSuffix suffix);

}  // namespace lumenary
