#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>

#include "core/NotchInterruption.h"
#include "support/FakePlatform.h"

namespace lumenary {
namespace {

class MadeSession final : public Session {
 public:
  bool isFullScreen = false;
  bool isRecording = false;

  bool isFullScreenAppInFront() const override { return isFullScreen; }
  bool isMicrophoneInUse() const override { return isRecording; }
};

TEST(NotchInterruption, IsGivenOnceADayAndNeverAtABadMoment) {
  const Date now = std::chrono::sys_days(std::chrono::year(2026) / 11 / 23);
  struct Case {
    std::string last;
    bool isFullScreen;
    bool isRecording;
    bool isGiven;
  };
  const std::vector<Case> cases = {
      {"", false, false, true},
      {"", true, false, false},
      {"", false, true, false},
      {"2026-11-22T00:00:01Z", false, false, false},
      {"2026-11-22T00:00:00Z", false, false, true},
      {"2026-11-22T00:00:00Z", true, false, false},
      {"2026-11-23T00:00:00Z", false, false, false},
      {"2026-11-23T23:59:59Z", false, false, false},
      {"2031-01-01T00:00:00Z", false, false, true},  // by a clock that was wrong
      {"yesterday", false, false, true},
  };
  for (const auto& [last, isFullScreen, isRecording, isGiven] : cases) {
    FakeDefaults defaults;
    if (!last.empty()) {
      defaults.values["notchLastInterruption"] = last;
    }
    const auto before = defaults.values;
    MadeSession session;
    session.isFullScreen = isFullScreen;
    session.isRecording = isRecording;
    EXPECT_EQ(NotchInterruption::claim(defaults, session, now), isGiven) << last;
    if (isGiven) {
      EXPECT_EQ(defaults.values["notchLastInterruption"], "2026-11-23T00:00:00Z");
      EXPECT_FALSE(NotchInterruption::claim(defaults, session, now + std::chrono::seconds(86'399)));
      EXPECT_TRUE(NotchInterruption::claim(defaults, session, now + std::chrono::seconds(86'400)));
    } else {
      EXPECT_EQ(defaults.values, before);
    }
  }
  FakeDefaults closed;
  closed.writeFailure = EROFS;
  EXPECT_FALSE(NotchInterruption::claim(closed, MadeSession(), now)) << "it would speak again and again";
}

}  // namespace
}  // namespace lumenary
