#include <gtest/gtest.h>

#include <limits>

#include "base/AppFormatting.h"
#include "support/TimeZone.h"

namespace lumenary {
namespace {

TEST(AppFormattingTest, sizesAreToldInTheUnitThatTheirRoundedNumberFits) {
  using Limits = std::numeric_limits<std::int64_t>;
  const std::pair<std::int64_t, std::string_view> cases[] = {
      {0, "Zero KB"},        {999'949'999, "999.9 MB"},
      {1, "1 KB"},           {2'050'000'000, "2.05 GB"},
      {1'499, "1 KB"},       {2'300'000'000, "2.3 GB"},
      {1'500, "2 KB"},       {999'994'999'999, "999.99 GB"},
      {999'999, "1 MB"},     {999'995'000'000, "1 TB"},
      {1'049'999, "1 MB"},   {1'234'567'000'000'000, "1234.57 TB"},
      {1'050'000, "1.1 MB"}, {Limits::max(), "9223372.04 TB"},
      {999'960'000, "1 GB"}, {Limits::min(), "-9223372.04 TB"}};
  for (const auto& [bytes, text] : cases) {
    EXPECT_EQ(AppFormatting::bytes(bytes), text) << bytes;
  }
}

TEST(AppFormattingTest, datesAreToldByTheirDistance) {
  const TimeZone zone("UTC0");
  const struct {
    std::string_view earlier, later, behind, ahead;
  } cases[] = {
      {"2026-11-22T12:00:00Z", "2026-11-22T12:00:00Z", "now", "now"},
      {"2026-11-22T12:00:00Z", "2026-11-22T12:00:05Z", "5 sec. ago", "in 5 sec."},
      {"2026-11-22T12:00:00Z", "2026-11-22T12:59:59Z", "59 min. ago", "in 59 min."},
      {"2026-11-22T23:00:00Z", "2026-11-23T22:59:59Z", "23 hr. ago", "in 23 hr."},
      {"2026-11-22T23:00:00Z", "2026-11-23T23:00:00Z", "yesterday", "tomorrow"},
      {"2026-11-16T12:00:00Z", "2026-11-22T23:00:00Z", "6 days ago", "in 6 days"},
      {"2026-11-15T12:00:00Z", "2026-11-22T00:00:00Z", "last wk.", "next wk."},
      {"2026-01-31T12:00:00Z", "2026-02-28T12:00:00Z", "4 wk. ago", "in 4 wk."},
      {"2026-01-31T12:00:00Z", "2026-03-01T12:00:00Z", "last mo.", "next mo."},
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
  EXPECT_EQ(AppFormatting::relativeDate(Date{}, Date(std::chrono::microseconds(999'999))), "now");
  EXPECT_EQ(AppFormatting::relativeDate(Date::min(), Date::max()), "584554 yr. ago");
}

TEST(AppFormattingTest, daysAreThoseOfThePersonsCalendar) {
  const auto told = [](const char* rule, std::string_view date, std::string_view now) {
    const TimeZone zone(rule);
    return AppFormatting::relativeDate(*parseISO8601(date), *parseISO8601(now));
  };
  EXPECT_EQ(told("UTC0", "2026-06-10T21:00:00Z", "2026-06-12T23:00:00Z"), "2 days ago");
  EXPECT_EQ(told(centralEurope, "2026-06-10T21:00:00Z", "2026-06-12T23:00:00Z"), "3 days ago");
  EXPECT_EQ(told(centralEurope, "2026-10-24T22:00:00Z", "2026-10-25T22:59:00Z"), "24 hr. ago") << "a day of 25 hours";
}

}  // namespace
}  // namespace lumenary
