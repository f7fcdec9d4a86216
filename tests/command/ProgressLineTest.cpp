#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <semaphore>

#include "cleanup/command/ProgressLine.h"
#include "cleanup/command/Wait.h"
#include "support/FakePlatform.h"

namespace lumenary::CleanupCommand {
namespace {

using Progress = DeveloperScanner::Progress;
using std::chrono::milliseconds;
using enum Progress::Phase;

const ProgressLine::Clock::time_point start{};

TEST(ProgressLine, SaysHowFarTheWorkIs) {
  struct {
    Progress progress;
    std::string expected;
  } const cases[] = {
      {{looking, 12, 0}, "Looking for projects… 12 found"},
      {{measuring, 34, 120}, "Measuring… 34 of 120"},
      {{dating, 3, 120}, "Reading dates… 3 of 120"},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(progressText(each.progress), each.expected);
  }
  constexpr auto most = std::numeric_limits<std::size_t>::max();
  EXPECT_LE(progressText({dating, most, most}).size(), 60U + std::string_view("…").size() - 1);
}

TEST(ProgressLine, IsDrawnSeldomAndOnlyForWorkThatTakesLong) {
  FakeTerminal terminal;
  terminal.isTerminal = true;
  ProgressLine line(terminal, start);
  const auto drawnAt = [&](int time, std::size_t found) {
    terminal.errors.clear();
    line.show({looking, found, 0});
    line.draw(start + milliseconds(time));
    return terminal.errors;
  };
  EXPECT_EQ(drawnAt(199, 1), "");
  line.clear();
  EXPECT_EQ(terminal.errors, "") << "nothing to clear yet";
  EXPECT_EQ(drawnAt(200, 2), "\r\x1b[KLooking for projects… 2 found");
  EXPECT_EQ(drawnAt(299, 3), "") << "too soon";
  EXPECT_EQ(drawnAt(300, 2), "") << "the same text";
  EXPECT_EQ(drawnAt(301, 3), "\r\x1b[KLooking for projects… 3 found");
  line.clear();
  line.clear();
  EXPECT_EQ(terminal.errors, "\r\x1b[KLooking for projects… 3 found\r\x1b[K") << "cleared once";
}

TEST(ProgressLine, IsDrawnWhileAnOperationRuns) {
  std::binary_semaphore drawn(0);
  FakeTerminal terminal;
  terminal.isTerminal = true;
  terminal.onError = [&] { drawn.release(); };
  ProgressLine line(terminal, start);
  const auto result = wait(line, [&] {
    line.show({measuring, 1, 2});
    return std::make_unique<bool>(drawn.try_acquire_for(std::chrono::seconds(60)));
  });
  EXPECT_TRUE(*result);
  EXPECT_EQ(terminal.errors, "\r\x1b[KMeasuring… 1 of 2");

  FakeTerminal file;
  ProgressLine nothing(file, start);
  EXPECT_EQ(wait(nothing,
                 [&] {
                   nothing.show({measuring, 1, 2});
                   nothing.draw(start + milliseconds(500));
                   return 7;
                 }),
            7);
  EXPECT_EQ(file.errors, "");
}

}  // namespace
}  // namespace lumenary::CleanupCommand
