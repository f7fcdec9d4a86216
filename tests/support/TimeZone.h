#pragma once

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

namespace lumenary {

/// The local time zone of a test, put back afterwards.
class TimeZone {
 public:
  /// `rule` as POSIX writes it, so that no table of zones is needed.
  explicit TimeZone(const char* rule) {
    if (const char* const before = std::getenv("TZ")) {
      before_ = before;
    }
    setenv("TZ", rule, 1);
    tzset();
  }
  ~TimeZone() {
    if (before_) {
      setenv("TZ", before_->c_str(), 1);
    } else {
      unsetenv("TZ");
    }
    tzset();
  }
  TimeZone(const TimeZone&) = delete;
  TimeZone& operator=(const TimeZone&) = delete;

 private:
  std::optional<std::string> before_;
};

/// One hour ahead of UTC, two in summer: the clock springs at 01:00 UTC on the last Sundays of March and October.
inline constexpr const char* centralEurope = "CET-1CEST,M3.5.0,M10.5.0/3";

}  // namespace lumenary
