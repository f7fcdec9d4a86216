#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/MonitoringCoordinator.h"
#include "core/async/Scheduler.h"
#include "support/ManualAsync.h"

namespace lumenary {
namespace {

using namespace std::chrono_literals;
using enum MonitoringSurface;

/// Passes at the clock that the test turns; each takes until the test ends it.
struct Monitored : testing::Test {
  ManualExecutor owner;
  ManualWorkers workers;
  Scheduler scheduler{owner, workers};
  std::vector<double> passes;  ///< when they began, in seconds
  bool isInstant = true;
  MonitoringCoordinator coordinator{owner, [this](MonitoringDemand demand) { return pass(demand); }};

  Task<> pass(MonitoringDemand /*demand*/) {
    passes.push_back(std::chrono::duration<double>(owner.elapsed()).count());
    if (!isInstant) {
      co_await scheduler.start(Lane::utility, [](const std::stop_token&) { return true; });
    }
  }
  void endPass() {
    workers.runOne();
    owner.runAll();
  }
};

using Passes = std::vector<double>;

TEST_F(Monitored, NothingRunsBeforeItIsStartedAndNothingBetweenPasses) {
  coordinator.set(mainWindow, true);
  coordinator.restart();
  owner.advance(60s);
  EXPECT_EQ(passes, Passes{});
  coordinator.set(mainWindow, false);
  coordinator.start();
  coordinator.start();
  EXPECT_EQ(passes, Passes{60});
  EXPECT_EQ(owner.timerCount(), 1U);
  owner.advance(61s);
  EXPECT_EQ(passes, (Passes{60, 90, 120}));
}

TEST_F(Monitored, AChangeOfDemandIsOnePassSoonAfterTheLastChange) {
  coordinator.start();
  owner.advance(10s);
  coordinator.set(mainWindow, true);
  owner.advance(200ms);
  coordinator.set(overview, true);
  owner.advance(300ms);
  coordinator.set(overview, false);
  coordinator.set(memory, false);  // changes nothing
  owner.advance(3s);
  EXPECT_EQ(passes, (Passes{0, 10.95, 12.95}));
}

TEST_F(Monitored, ARestartDuringAPassWaitsForItsEndAndPassesNeverOverlap) {
  isInstant = false;
  coordinator.start();
  owner.advance(5s);
  coordinator.restart();
  coordinator.restart(450ms);
  owner.advance(60s);
  EXPECT_EQ(passes, Passes{0});
  endPass();
  owner.advance(1s);
  EXPECT_EQ(passes, (Passes{0, 65.45}));
  endPass();
  owner.advance(29s);
  EXPECT_EQ(passes.size(), 2U);
  owner.advance(2s);
  EXPECT_EQ(passes.size(), 3U) << "the interval counts from the end of a pass";
}

TEST_F(Monitored, StoppedItSleepsForGoodUntilItIsStartedAgain) {
  coordinator.start();
  coordinator.stop();
  owner.advance(100s);
  EXPECT_EQ(passes, Passes{0});
  EXPECT_EQ(owner.timerCount(), 0U);
  coordinator.start();
  EXPECT_EQ(passes, (Passes{0, 100}));
}

}  // namespace
}  // namespace lumenary
