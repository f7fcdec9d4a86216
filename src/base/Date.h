#pragma once

#include <chrono>
#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>

namespace lumenary {

/// An absolute instant. Microseconds reach 292,000 years either way, so that any time stamp of a
/// file system fits; a stamp outside that range is clamped where it is read.
using Date = std::chrono::sys_time<std::chrono::microseconds>;

/// UTC with second precision, "2026-11-22T21:46:05Z"; fractions are cut towards the past. What lies
/// outside the years 0000 to 9999 is written as the nearest second inside, so that every text reads back.
std::string iso8601(Date date);

/// Reads what `iso8601` writes, and nothing else. No value for any other text or an impossible date.
std::optional<Date> parseISO8601(std::string_view text);

/// The person's calendar and wall clock at `date`, with the offset from UTC.
std::tm calendarTime(Date date);

/// The same wall-clock time `days` calendar days before `now`, in the person's time zone. No value
/// where the calendar can't express it.
std::optional<Date> calendarDaysBefore(Date now, std::int64_t days);

}  // namespace lumenary
