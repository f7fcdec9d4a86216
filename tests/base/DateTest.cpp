#include <gtest/gtest.h>

#include <limits>

#include "base/Date.h"
#include "support/TimeZone.h"

namespace lumenary {
namespace {

using std::chrono::microseconds;
using std::chrono::seconds;

TEST(DateTest, datesAreWrittenAndReadBack) {
  const std::pair<std::int64_t, std::string_view> cases[] = {
      {0, "1970-01-01T00:00:00Z"},      {951'868'799, "2000-02-29T23:59:59Z"},
      {-1, "1969-12-31T23:59:59Z"},     {-62'167'219'200, "0000-01-01T00:00:00Z"},
      {86'400, "1970-01-02T00:00:00Z"}, {253'402'300'799, "9999-12-31T23:59:59Z"}};
  for (const auto& [count, text] : cases) {
    EXPECT_EQ(iso8601(Date(seconds(count))), text);
    EXPECT_EQ(parseISO8601(text), Date(seconds(count))) << text;
  }
}

TEST(DateTest, writingCutsFractionsTowardsThePastAndStaysWithinFourDigitsOfYear) {
  EXPECT_EQ(iso8601(Date(microseconds(1'999'999))), "1970-01-01T00:00:01Z");
  EXPECT_EQ(iso8601(Date(microseconds(-1))), "1969-12-31T23:59:59Z");
  EXPECT_EQ(iso8601(Date::min()), "0000-01-01T00:00:00Z");
  EXPECT_EQ(iso8601(Date::max()), "9999-12-31T23:59:59Z");
}

TEST(DateTest, anythingElseIsNoDate) {
  for (const std::string_view text :
       {"", "2026-11-22", "2026-11-22T21:46:05", "2026-11-22T21:46:05z", "2026-11-22 21:46:05Z",
        "2026-11-22T21:46:05.5Z", "2026-11-22T21:46:05Z ", "2026-11-22T21:46:05+00:00", "2026-11-22T21:46:60Z",
        "2026-11-22T24:00:00Z", "2026-02-29T00:00:00Z", "2026-13-01T00:00:00Z", "2026-11-00T00:00:00Z",
        "-026-11-22T21:46:05Z", "2026-11-+2T21:46:05Z"}) {
    EXPECT_EQ(parseISO8601(text), std::nullopt) << text;
  }
}

TEST(DateTest, daysBeforeKeepTheWallClockAcrossChangesOfTheClock) {
  const TimeZone zone(centralEurope);
  const std::tuple<std::string_view, std::int64_t, std::string_view> cases[] = {
      {"2026-11-22T21:46:05Z", 0, "2026-11-22T21:46:05Z"},  {"2026-11-22T21:46:05Z", 90, "2026-08-24T20:46:05Z"},
      {"2026-03-29T12:00:00Z", 1, "2026-03-28T13:00:00Z"},  {"2026-10-25T12:00:00Z", 1, "2026-10-24T11:00:00Z"},
      {"2026-03-01T12:00:00Z", 1, "2026-02-28T12:00:00Z"},  {"1970-01-01T23:59:59Z", 1, "1969-12-31T23:59:59Z"},
      {"2026-11-22T21:46:05Z", -1, "2026-11-23T21:46:05Z"}, {"2026-11-22T21:46:05Z", 365, "2025-11-22T21:46:05Z"}};
  for (const auto& [now, days, then] : cases) {
    const auto fraction = microseconds(250'000);
    EXPECT_EQ(calendarDaysBefore(*parseISO8601(now) + fraction, days), *parseISO8601(then) + fraction)
        << days << " days before " << now;
  }
}

TEST(DateTest, noDateLiesOutsideOfTheCalendar) {
  using Limits = std::numeric_limits<std::int64_t>;
  constexpr std::int64_t far = std::numeric_limits<std::int32_t>::max();
  for (const std::int64_t days : {std::int64_t{200'000'000}, far, far + 32, Limits::max(), Limits::min()}) {
    EXPECT_EQ(calendarDaysBefore(Date(seconds(1'795'383'965)), days), std::nullopt) << days;
  }
  EXPECT_EQ(calendarDaysBefore(Date::min(), 1), std::nullopt);
  EXPECT_EQ(calendarDaysBefore(Date::max(), -1), std::nullopt);
}

}  // namespace
}  // namespace lumenary
