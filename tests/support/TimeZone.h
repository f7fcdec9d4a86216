#pragma once

#include <cstdlib>
#include <ctime>
#include <string>

namespace lumenary {

/// The local time zone of a test, put back afterwards. The rule is as POSIX writes it: no table of zones is needed.
class TimeZone {
 public:
  explicit TimeZone(const char* rule)
      : wasSet_(std::getenv("TZ") != nullptr), before_(wasSet_ ? std::getenv("TZ") : "") {
    setenv("TZ", rule, 1);
    tzset();
  }
  ~TimeZone() {
    wasSet_ ? setenv("TZ", before_.c_str(), 1) : unsetenv("TZ");
    tzset();
  }
  TimeZone(const TimeZone&) = delete;
  TimeZone& operator=(const TimeZone&) = delete;

 private:
  const bool wasSet_;
  const std::string before_;
};

/// One hour ahead of UTC, two in summer: the clock springs at 01:00 UTC on the last Sundays of March and October.
inline constexpr const char* centralEurope = "CET-1CEST,M3.5.0,M10.5.0/3";

}  // namespace lumenary
