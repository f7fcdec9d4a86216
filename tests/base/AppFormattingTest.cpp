#include <gtest/gtest.h>

#include <limits>

#include "base/AppFormatting.h"
#include "support/TimeZone.h"

namespace lumenary {
namespace {

TEST(AppFormattingTest, sizesAreToldInTheUnitThatTheirRoundedNumberFits) {
  const struct {
    std::int64_t bytes;
    std::string_view text;
  } cases[] = {
      {0, "Zero KB"},
      {1, "1 KB"},
      {1'499, "1 KB"},
      {1'500, "2 KB"},
      {999'499, "999 KB"},
      {999'999, "1 MB"},
      {1'049'999, "1 MB"},
      {1'050'000, "1.1 MB"},
      {1'500'000, "1.5 MB"},
      {999'949'999, "999.9 MB"},
      {999'960'000, "1 GB"},
      {2'250'000'000, "2.25 GB"},
      {2'300'000'000, "2.3 GB"},
      {2'050'000'000, "2.05 GB"},
      {999'994'999'999, "999.99 GB"},
      {999'995'000'000, "1 TB"},
      {1'234'567'000'000'000, "1234.57 TB"},
      {std::numeric_limits<std::int64_t>::max(), "9223372.04 TB"},
      {std::numeric_limits<std::int64_t>::min(), "-9223372.04 TB"},
      {-1, "-1 KB"},
      {-1'500'000, "-1.5 MB"},
  };
  for (const auto& [bytes, text] : cases) {
    EXPECT_EQ(AppFormatting::bytes(bytes), text) << bytes;
  }
}

TEST(AppFormattingTest, datesAreToldByTheirDistance) {
  const TimeZone zone("UTC0");
  const struct {
    std::string_view earlier;
    std::string_view later;
    std::string_view behind;
    std::string_view ahead;
  } cases[] = {
      {"2026-11-22T12:00:00Z", "2026-11-22T12:00:00Z", "now", "now"},
      {"2026-11-22T12:00:00Z", "2026-11-22T12:00:05Z", "5 sec. ago", "in 5 sec."},
      {"2026-11-22T12:00:00Z", "2026-11-22T12:01:00Z", "1 min. ago", "in 1 min."},
      {"2026-11-22T12:00:00Z", "2026-11-22T12:59:59Z", "59 min. ago", "in 59 min."},
      {"2026-11-22T23:00:00Z", "2026-11-23T22:59:59Z", "23 hr. ago", "in 23 hr."},
      {"2026-11-22T23:00:00Z", "2026-11-23T23:00:00Z", "yesterday", "tomorrow"},
      {"2026-11-20T23:00:00Z", "2026-11-22T01:00:00Z", "2 days ago", "in 2 days"},
      {"2026-11-16T12:00:00Z", "2026-11-22T23:00:00Z", "6 days ago", "in 6 days"},
      {"2026-11-15T12:00:00Z", "2026-11-22T00:00:00Z", "last wk.", "next wk."},
      {"2026-11-08T12:00:00Z", "2026-11-22T12:00:00Z", "2 wk. ago", "in 2 wk."},
      {"2026-01-31T12:00:00Z", "2026-02-28T12:00:00Z", "4 wk. ago", "in 4 wk."},
      {"2026-01-31T12:00:00Z", "2026-03-01T12:00:00Z", "last mo.", "next mo."},
      {"2025-12-22T23:00:00Z", "2026-11-22T00:00:00Z", "11 mo. ago", "in 11 mo."},
      {"2025-11-22T12:00:00Z", "2026-11-21T12:00:00Z", "11 mo. ago", "in 11 mo."},
      {"2025-11-22T12:00:00Z", "2026-11-22T00:00:00Z", "last yr.", "next yr."},
      {"1970-01-01T00:00:00Z", "2026-11-22T12:00:00Z", "56 yr. ago", "in 56 yr."},
  };
  for (const auto& [earlier, later, behind, ahead] : cases) {
    const Date from = *parseISO8601(earlier);
    const Date to = *parseISO8601(later);
    EXPECT_EQ(AppFormatting::relativeDate(from, to), behind) << earlier << " seen from " << later;
    EXPECT_EQ(AppFormatting::relativeDate(to, from), ahead) << later << " seen from " << earlier;
  }
  const Date start{};
  EXPECT_EQ(AppFormatting::relativeDate(start, start + std::chrono::microseconds(999'999)), "now");
  EXPECT_EQ(AppFormatting::relativeDate(Date::min(), Date::max()), "584554 yr. ago");
}

TEST(AppFormattingTest, daysAreThoseOfThePersonsCalendar) {
  const Date date = *parseISO8601("2026-06-10T21:00:00Z");
  const Date now = *parseISO8601("2026-06-12T23:00:00Z");
  {
    const TimeZone zone("UTC0");
    EXPECT_EQ(AppFormatting::relativeDate(date, now), "2 days ago");
  }
  const TimeZone zone(centralEurope);
  EXPECT_EQ(AppFormatting::relativeDate(date, now), "3 days ago");
  const Date midnightOfA25HourDay = *parseISO8601("2026-10-24T22:00:00Z");
  EXPECT_EQ(
      AppFormatting::relativeDate(midnightOfA25HourDay, midnightOfA25HourDay + std::chrono::minutes(24 * 60 + 59)),
      "24 hr. ago");
}

}  // namespace
}  // namespace lumenary
