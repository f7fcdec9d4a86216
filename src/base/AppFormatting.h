#pragma once

#include <cstdint>
#include <string>

#include "base/Date.h"

/// The one writer of sizes and of relative dates.
namespace lumenary::AppFormatting {

/// A size in decimal units from KB to TB: no decimals for KB, one for MB, two from GB on, trailing
/// zeros dropped ("1 KB", "1.5 MB", "2.25 GB"). Halves are rounded up; what isn't 0 is never told as less than 1 KB.
/// 0 is "Zero KB". Any value is taken; a negative one is its opposite behind a minus sign.
std::string bytes(std::int64_t byteCount);

/// The distance from `now` in short English: "now", "2 hr. ago", "yesterday", "3 days ago", "2 wk. ago", "5 mo. ago",
/// "last yr.", and the same ahead of now ("tomorrow", "in 3 days"). Twelve characters hold it up to 9999 years.
///
/// The largest unit of which the distance holds at least one whole tells it. On the same day, or within 24 hours, those
/// are hours, minutes and seconds of elapsed time; less than a second is "now". Beyond, they are years, months, weeks
/// of seven days, and days between the two dates of the person's calendar, the time of day left aside. One day, week,
/// month or year has a name of its own.
std::string relativeDate(Date date, Date now);

/// By the person's calendar and clock, "Nov 23, 2026 at 9:31 AM".
std::string dateAndTime(Date date);

}  // namespace lumenary::AppFormatting
