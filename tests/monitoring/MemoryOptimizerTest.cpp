#include <gtest/gtest.h>

#include "monitoring/MemoryOptimizer.h"
#include "support/FakeProcesses.h"

namespace lumenary {
namespace {

class Optimizer : public ::testing::Test {
 protected:
  Optimizer() {
    for (const auto& [pid, path] : std::map<std::int32_t, std::string>{
             {2, "/own"}, {3, "/front"}, {4, "/a"}, {5, "/a"}, {6, "/b"}, {7, "/other now"}}) {
      processes.running[pid].appPath = path;
    }
    optimizer.processes = [] {
      return std::vector<AppMemoryUsage>{{.key = "background", .name = "", .pids = {1}},
                                         {.key = "/own", .name = "", .bundlePath = "/own", .pids = {2}},
                                         {.key = "/front", .name = "", .bundlePath = "/front", .pids = {3}},
                                         {.key = "/a", .name = "", .bundlePath = "/a", .pids = {4, 5, 7}},
                                         {.key = "/b", .name = "", .bundlePath = "/b", .mainPID = 6}};
    };
    control.front = 3;
  }

  FakeProcesses processes;
  FakeControl control;
  std::function<void(bool)> finishPurge;
  MemoryOptimizer optimizer{control, processes, "/own",
                            [this](const std::function<bool()>& work, const std::function<void(bool)>& done) {
                              finishPurge = [work, done](bool) { done(work()); };
                            }};
};

TEST_F(Optimizer, LowersEveryAppButTheOneInFront) {
  optimizer.setOn(true);
  EXPECT_EQ(control.calls, (std::vector<std::string>{"lower 4", "lower 5", "lower 6"}));
  EXPECT_EQ(optimizer.message, "2 background apps run at low priority.");
  control.calls.clear();

  optimizer.appBecameActive("/a");
  optimizer.appStoppedBeingActive("/front");
  EXPECT_EQ(control.calls, (std::vector<std::string>{"restore 4", "restore 5", "lower 3"}));
  control.calls.clear();

  optimizer.setOn(false);
  EXPECT_EQ(control.calls, (std::vector<std::string>{"restore 6", "restore 3"}));
  EXPECT_EQ(optimizer.message, "Every app is back to full speed.");
  optimizer.appStoppedBeingActive("/a");
  EXPECT_TRUE(optimizer.lowered.empty()) << "it is off";
}

TEST_F(Optimizer, LowersNothingWhereTheAppInFrontCannotBeTold) {
  control.front.reset();
  optimizer.setOn(true);
  EXPECT_TRUE(control.calls.empty());
  EXPECT_EQ(optimizer.message, "No background apps to lower right now.");
}

TEST_F(Optimizer, TellsHowManyItLowered) {
  control.deaf = {4, 5};
  optimizer.setOn(true);
  EXPECT_EQ(optimizer.message, "1 background app runs at low priority.");
  optimizer.setOn(false);
  control.deaf = {4, 5, 6};
  optimizer.setOn(true);
  EXPECT_EQ(optimizer.message, "No background apps to lower right now.");
}

TEST(MemoryOptimizer, LeavesNoAppSlowedDown) {
  FakeProcesses processes;
  processes.running[4].appPath = "/a";
  FakeControl control;
  control.front = 3;
  {
    MemoryOptimizer optimizer(control, processes, "", [](auto, auto) {});
    optimizer.processes = [] {
      return std::vector<AppMemoryUsage>{{.key = "/a", .name = "", .bundlePath = "/a", .pids = {4}}};
    };
    optimizer.setOn(true);
  }
  EXPECT_EQ(control.calls, (std::vector<std::string>{"lower 4", "restore 4"}));
}

TEST_F(Optimizer, TellsWhetherTheFileCacheWasEmptied) {
  optimizer.purgeFileCache();
  optimizer.purgeFileCache();
  EXPECT_TRUE(optimizer.isPurging);
  EXPECT_TRUE(control.calls.empty()) << "the work is done elsewhere";
  finishPurge(true);
  EXPECT_FALSE(optimizer.isPurging);
  EXPECT_EQ(optimizer.message, "File cache emptied. It refills as you open files.");
  control.emptiesCache = false;
  optimizer.purgeFileCache();
  finishPurge(true);
  EXPECT_EQ(optimizer.message, "The file cache wasn't emptied.");
  EXPECT_EQ(control.calls, (std::vector<std::string>{"empty", "empty"}));
}

TEST_F(Optimizer, OpensChromesSettingsOnlyWhereItRuns) {
  optimizer.openChromeMemorySaver({{.pid = 4, .path = "/a", .id = "firefox", .name = "Firefox"}});
  EXPECT_TRUE(control.calls.empty());
  optimizer.openChromeMemorySaver({{.pid = 4, .path = "/c.desktop", .id = "google-chrome", .name = "Chrome"}});
  EXPECT_EQ(control.calls, (std::vector<std::string>{"open /c.desktop chrome://settings/performance"}));
}

}  // namespace
}  // namespace lumenary
