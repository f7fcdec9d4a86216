#include "base/AppFormatting.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <string_view>
#include <utility>

namespace lumenary {
namespace {

struct SizeUnit {
  std::string_view name;
  std::uint64_t step;          ///< bytes of the last decimal place that is shown
  std::uint64_t stepsPerUnit;  ///< a power of ten, as many zeros as decimals
};

constexpr std::array sizeUnits{
    SizeUnit{.name = " KB", .step = 1'000, .stepsPerUnit = 1},
    SizeUnit{.name = " MB", .step = 100'000, .stepsPerUnit = 10},
    SizeUnit{.name = " GB", .step = 10'000'000, .stepsPerUnit = 100},
    SizeUnit{.name = " TB", .step = 10'000'000'000, .stepsPerUnit = 100},
};

std::uint64_t roundedSteps(std::uint64_t byteCount, const SizeUnit& unit) {
  const std::uint64_t roundUp = byteCount % unit.step >= unit.step / 2 ? 1 : 0;
  return (byteCount / unit.step) + roundUp;
}

/// ".25", ".5" or nothing: the decimals of `steps` without trailing zeros.
std::string decimals(std::uint64_t steps, std::uint64_t stepsPerUnit) {
  std::string text;
  for (std::uint64_t rest = steps % stepsPerUnit; rest > 0; rest %= stepsPerUnit) {
    stepsPerUnit /= 10;
    text += static_cast<char>('0' + (rest / stepsPerUnit));
  }
  return text.empty() ? text : "." + text;
}

struct TimeUnit {
  std::string_view name;
  std::string_view last;  ///< said of exactly one behind now; empty where the number is told
  std::string_view next;  ///< the same ahead of now
};

constexpr TimeUnit year{.name = "yr.", .last = "last yr.", .next = "next yr."};
constexpr TimeUnit month{.name = "mo.", .last = "last mo.", .next = "next mo."};
constexpr TimeUnit week{.name = "wk.", .last = "last wk.", .next = "next wk."};
constexpr TimeUnit day{.name = "days", .last = "yesterday", .next = "tomorrow"};
constexpr TimeUnit hour{.name = "hr.", .last = "", .next = ""};
constexpr TimeUnit minute{.name = "min.", .last = "", .next = ""};
constexpr TimeUnit second{.name = "sec.", .last = "", .next = ""};

using Distance = std::pair<TimeUnit, std::int64_t>;

/// The first distance that is at least one; the last one where none is.
Distance firstWhole(std::initializer_list<Distance> distances) {
  const auto* const found = std::ranges::find_if(distances, [](const Distance& each) { return each.second > 0; });
  return found == distances.end() ? *(distances.end() - 1) : *found;
}

/// A number that grows by one with each day of the local calendar.
std::int64_t dayNumber(Date date, const std::tm& local) {
  const auto wallClock = std::chrono::floor<std::chrono::seconds>(date) + std::chrono::seconds(local.tm_gmtoff);
  return std::chrono::floor<std::chrono::days>(wallClock).time_since_epoch().count();
}

Distance distanceBetween(Date earlier, Date later) {
  const std::tm from = calendarTime(earlier);
  const std::tm to = calendarTime(later);
  const std::int64_t days = dayNumber(later, to) - dayNumber(earlier, from);
  // Unsigned, as the far ends of the range are further apart than a signed number of microseconds can tell.
  const std::uint64_t microseconds = static_cast<std::uint64_t>(later.time_since_epoch().count()) -
                                     static_cast<std::uint64_t>(earlier.time_since_epoch().count());
  const auto seconds = static_cast<std::int64_t>(microseconds / 1'000'000);
  if (days < 1 || seconds < 86'400) {
    return firstWhole({{hour, seconds / 3600}, {minute, seconds / 60}, {second, seconds}});
  }
  const int months = (12 * (to.tm_year - from.tm_year)) + to.tm_mon - from.tm_mon - (to.tm_mday < from.tm_mday ? 1 : 0);
  return firstWhole({{year, months / 12}, {month, months}, {week, days / 7}, {day, days}});
}

}  // namespace

std::string AppFormatting::bytes(std::int64_t byteCount) {
  if (byteCount == 0) {
    return "Zero KB";
  }
  const auto bits = static_cast<std::uint64_t>(byteCount);
  const std::uint64_t magnitude = byteCount < 0 ? 0 - bits : bits;
  // The unit is chosen by the rounded number: what rounds up to 1000 KB is told as 1 MB.
  const auto* unit = sizeUnits.begin();
  while (unit + 1 != sizeUnits.end() && roundedSteps(magnitude, *unit) >= 1000 * unit->stepsPerUnit) {
    ++unit;
  }
  const std::uint64_t steps = std::max<std::uint64_t>(1, roundedSteps(magnitude, *unit));
  std::string text = byteCount < 0 ? "-" : "";
  text += std::to_string(steps / unit->stepsPerUnit);
  text += decimals(steps, unit->stepsPerUnit);
  return text.append(unit->name);
}

std::string AppFormatting::relativeDate(Date date, Date now) {
  const bool isAhead = date > now;
  const auto [unit, count] = isAhead ? distanceBetween(now, date) : distanceBetween(date, now);
  if (count == 0) {
    return "now";
  }
  if (count == 1 && !unit.last.empty()) {
    return std::string(isAhead ? unit.next : unit.last);
  }
  const std::string number = std::to_string(count) + " " + std::string(unit.name);
  return isAhead ? "in " + number : number + " ago";
}

std::string AppFormatting::dateAndTime(Date date) {
  constexpr std::array<std::string_view, 12> months = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                       "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  const std::tm time = calendarTime(date);
  const int hourOfHalf = time.tm_hour % 12 == 0 ? 12 : time.tm_hour % 12;
  const std::string minutes = std::to_string(time.tm_min);
  return std::string(months.at(static_cast<std::size_t>(time.tm_mon))) + " " + std::to_string(time.tm_mday) + ", " +
         std::to_string(std::int64_t{time.tm_year} + 1900) + " at " + std::to_string(hourOfHalf) + ":" +
         (minutes.size() < 2 ? "0" : "") + minutes + (time.tm_hour < 12 ? " AM" : " PM");
}

}  // namespace lumenary
