#include "base/Date.h"

#include <algorithm>

namespace lumenary {
namespace {

using std::chrono::days;
using std::chrono::floor;
using std::chrono::hours;
using std::chrono::minutes;
using std::chrono::seconds;
using std::chrono::sys_days;
using std::chrono::year_month_day;
using Seconds = std::chrono::sys_seconds;

constexpr Seconds firstWritten = sys_days(std::chrono::year(0) / 1 / 1);
constexpr Seconds lastWritten = sys_days(std::chrono::year(10000) / 1 / 1) - seconds(1);

/// A digit stands where this has a 0; everything else stands as it is.
constexpr std::string_view pattern = "0000-00-00T00:00:00Z";

bool fitsPattern(std::string_view text) {
  return std::ranges::equal(text, pattern, [](char character, char expected) {
    return expected == '0' ? '0' <= character && character <= '9' : character == expected;
  });
}

int numberAt(std::string_view text, std::size_t position, std::size_t digits) {
  int number = 0;
  for (const char digit : text.substr(position, digits)) {
    number = 10 * number + (digit - '0');
  }
  return number;
}

void writeNumber(std::string& text, std::size_t position, std::size_t digits, int number) {
  for (; digits > 0; --digits, number /= 10) {
    text[position + digits - 1] = static_cast<char>('0' + (number % 10));
  }
}

unsigned partAt(std::string_view text, std::size_t position) {
  return static_cast<unsigned>(numberAt(text, position, 2));
}

}  // namespace

std::string iso8601(Date date) {
  const Seconds instant = std::clamp(floor<seconds>(date), firstWritten, lastWritten);
  const sys_days day = floor<days>(instant);
  const year_month_day calendar(day);
  const std::chrono::hh_mm_ss time(instant - day);
  std::string text(pattern);
  writeNumber(text, 0, 4, static_cast<int>(calendar.year()));
  writeNumber(text, 5, 2, static_cast<int>(static_cast<unsigned>(calendar.month())));
  writeNumber(text, 8, 2, static_cast<int>(static_cast<unsigned>(calendar.day())));
  writeNumber(text, 11, 2, static_cast<int>(time.hours().count()));
  writeNumber(text, 14, 2, static_cast<int>(time.minutes().count()));
  writeNumber(text, 17, 2, static_cast<int>(time.seconds().count()));
  return text;
}

std::optional<Date> parseISO8601(std::string_view text) {
  if (!fitsPattern(text)) {
    return std::nullopt;
  }
  const year_month_day day(std::chrono::year(numberAt(text, 0, 4)), std::chrono::month(partAt(text, 5)),
                           std::chrono::day(partAt(text, 8)));
  const hours hour(partAt(text, 11));
  const minutes minute(partAt(text, 14));
  const seconds second(partAt(text, 17));
  if (!day.ok() || hour >= days(1) || minute >= hours(1) || second >= minutes(1)) {
    return std::nullopt;
  }
  return sys_days(day) + hour + minute + second;
}

std::tm calendarTime(Date date) {
  const std::time_t instant = floor<seconds>(date).time_since_epoch().count();
  std::tm parts{};
  localtime_r(&instant, &parts);
  return parts;
}

std::optional<Date> calendarDaysBefore(Date now, std::int64_t days) {
  std::tm parts = calendarTime(now);
  if (__builtin_sub_overflow(parts.tm_mday, days, &parts.tm_mday)) {
    return std::nullopt;
  }
  parts.tm_isdst = -1;
  // -1 is also the second before 1970: only the weekday, which mktime always fills in, tells that from a failure.
  parts.tm_wday = -1;
  const std::time_t instant = std::mktime(&parts);
  if (parts.tm_wday == -1) {
    return std::nullopt;
  }
  auto fraction = now.time_since_epoch() % seconds(1);
  if (fraction.count() < 0) {
    fraction += seconds(1);
  }
  std::int64_t microseconds = 0;
  if (__builtin_mul_overflow(instant, std::int64_t{1'000'000}, &microseconds) ||
      __builtin_add_overflow(microseconds, fraction.count(), &microseconds)) {
    return std::nullopt;
  }
  return Date(std::chrono::microseconds(microseconds));
}

}  // namespace lumenary
