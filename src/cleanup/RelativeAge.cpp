#include "cleanup/RelativeAge.h"

#include <cstdint>

namespace lumenary {
namespace {

std::string counted(std::int64_t count, const std::string& unit) {
  return std::to_string(count) + " " + unit + (count == 1 ? "" : "s");
}

}  // namespace

std::chrono::microseconds ageOf(Date date, Date now) {
  std::int64_t age = 0;
  if (__builtin_sub_overflow(now.time_since_epoch().count(), date.time_since_epoch().count(), &age)) {
    return date < now ? std::chrono::microseconds::max() : std::chrono::microseconds::min();
  }
  return std::chrono::microseconds(age);
}

std::string relativeAge(Date date, Date now, AgeSuffix suffix) {
  const std::int64_t days = std::chrono::floor<std::chrono::days>(ageOf(date, now)).count();
  if (days < 1) {
    return "Today";
  }
  std::string text = counted(days, "day");
  if (days >= 365) {
    text = counted(days / 365, "year");
  } else if (days > 30) {
    text = counted(days / 30, "month");
  }
  return text + (suffix == AgeSuffix::ago ? " ago" : "");
}

}  // namespace lumenary
