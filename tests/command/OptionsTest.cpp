#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "cleanup/command/Options.h"

namespace lumenary::CleanupCommand {
namespace {

using Arguments = std::vector<std::string>;

TEST(CleanupOptions, AreReadFromLeftToRight) {
  struct {
    Arguments arguments;
    Options expected;
  } const cases[] = {
      {{}, {}},
      {{"--json"}, {.root = {}, .days = {}, .json = true}},
      {{"--trash", "--days", "30"}, {.root = {}, .days = 30, .trash = true}},
      {{"--root", "--json"}, {.root = "--json", .days = {}}},
      {{"--root", ""}, {.root = "", .days = {}}},
      {{"--days", "+3"}, {.root = {}, .days = 3}},
      {{"--days", "007"}, {.root = {}, .days = 7}},
      {{"--days", "9223372036854775807"}, {.root = {}, .days = std::numeric_limits<std::int64_t>::max()}},
      {{"--days", "1", "--root", "a", "--json", "--days", "2", "--root", "b", "--json"},
       {.root = "b", .days = 2, .json = true}},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(parse(each.arguments), each.expected) << testing::PrintToString(each.arguments);
  }
}

TEST(CleanupOptions, TellTheFirstThatIsWrong) {
  constexpr auto days = "--days needs a whole number above 0.";
  struct {
    Arguments arguments;
    std::string message;
  } const cases[] = {
      {{"--root"}, "--root needs a path."},
      {{"--trash"}, "--trash needs --days."},
      {{"--help"}, "Unknown option: --help"},
      {{""}, "Unknown option: "},
      {{"--json=1"}, "Unknown option: --json=1"},
      {{"-x", "--days", "0"}, "Unknown option: -x"},
      {{"--days", "0", "-x"}, days},
      {{"--trash", "--days"}, days},
      {{"--days", ""}, days},
      {{"--days", "0"}, days},
      {{"--days", "-3"}, days},
      {{"--days", "2.5"}, days},
      {{"--days", "+-3"}, days},
      {{"--days", "3 "}, days},
      {{"--days", "0x10"}, days},
      {{"--days", "9223372036854775808"}, days},
      {{"--days", "5", "--days", "no"}, days},
  };
  for (const auto& each : cases) {
    const auto options = parse(each.arguments);
    EXPECT_EQ(options ? "accepted" : options.error().message, each.message) << testing::PrintToString(each.arguments);
  }
}

}  // namespace
}  // namespace lumenary::CleanupCommand
