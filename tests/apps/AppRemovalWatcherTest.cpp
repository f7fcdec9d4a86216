#include <gtest/gtest.h>

#include "apps/AppRemovalWatcher.h"

namespace lumenary {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using Snapshot = AppRemovalWatcher::Snapshot;
using Instant = AppRemovalWatcher::Instant;

TEST(RemovedApps, AreThoseThatStandNowhereAnyMore) {
  const auto copied = [](const std::string& id) { return id == "org.copied"; };
  const struct {
    const char* name;
    Snapshot before;
    Snapshot after;
    std::vector<RemovedApp> removed;
  } cases[] = {
      {"nothing changed", {{"a", "A"}}, {{"a", "A"}}, {}},
      {"came", {}, {{"a", "A"}}, {}},
      {"updated or renamed", {{"a", "A 1"}}, {{"a", "A 2"}}, {}},
      {"a copy stands on another volume", {{"org.copied", "C"}}, {}, {}},
      {"of the system", {{"com.apple.Chess", "Chess"}, {"com.applet", "Applet"}}, {}, {{"com.applet", "Applet"}}},
      {"in the order of the names, byte by byte",
       {{"1", "b"}, {"2", "a"}, {"3", "B"}, {"4", "a"}},
       {},
       {{"3", "B"}, {"2", "a"}, {"4", "a"}, {"1", "b"}}},
  };
  for (const auto& [name, before, after, removed] : cases) {
    EXPECT_EQ(AppRemovalWatcher::removedApps(before, after, copied), removed) << name;
  }
}

TEST(RemovedAppsNotice, NamesTheFirstAndCountsTheOthers) {
  const RemovedApp maps{"org.maps", "Maps\n"};
  const RemovedApp chat{"org.chat", "Chat"};
  EXPECT_EQ(RemovedAppsNotice::of({maps}, 1'048'575), std::nullopt);
  EXPECT_EQ(RemovedAppsNotice::of({}, 1 << 30), std::nullopt);
  EXPECT_EQ(RemovedAppsNotice::of({maps}, 1'048'576)->message(), "Maps\uFFFD left 1 MB behind");
  EXPECT_EQ(RemovedAppsNotice::of({chat, maps}, 1 << 30)->title(), "Chat and 1 more");
}

/// A watcher over apps that the test installs and removes, at a clock that it turns.
struct WatchedApps {
  Snapshot installed = {{"a", "A"}, {"b", "B"}};
  int snapshots = 0;
  std::vector<std::vector<RemovedApp>> told;
  AppRemovalWatcher watcher{[this] {
                              ++snapshots;
                              return installed;
                            },
                            [](const std::string&) { return false; },
                            [this](const std::vector<RemovedApp>& removed) { told.push_back(removed); }};
  const Instant start{};
};

TEST(AppRemovalWatcher, ManyEventsAreOneCheckFourSecondsAfterTheLast) {
  WatchedApps apps;
  apps.watcher.start();
  EXPECT_EQ(apps.watcher.nextCheckAt(), std::nullopt);
  apps.installed.erase("a");
  for (const int at : {0, 1500, 3900}) {
    apps.watcher.onEvent(apps.start + milliseconds(at));
  }
  EXPECT_EQ(apps.watcher.nextCheckAt(), apps.start + milliseconds(7900));
  apps.watcher.runDue(apps.start + milliseconds(7899));
  EXPECT_EQ(apps.snapshots, 1);
  apps.watcher.runDue(apps.start + milliseconds(7900));
  EXPECT_EQ(apps.told, (std::vector<std::vector<RemovedApp>>{{{"a", "A"}}}));
  EXPECT_EQ(apps.watcher.nextCheckAt(), std::nullopt);
  apps.watcher.runDue(apps.start + seconds(60));
  EXPECT_EQ(apps.snapshots, 2);
}

TEST(AppRemovalWatcher, TellsEachRemovalOnceAndForgetsWhatCameBackInTime) {
  WatchedApps apps;
  apps.watcher.start();
  const auto change = [&](const Snapshot& installed, int at) {
    apps.installed = installed;
    apps.watcher.onEvent(apps.start + seconds(at));
    apps.watcher.runDue(apps.start + seconds(at + 4));
  };
  apps.installed.erase("b");
  apps.watcher.onEvent(apps.start);
  change({{"a", "A"}, {"b", "B 2"}}, 1);
  EXPECT_TRUE(apps.told.empty()) << "an update takes the app away for a moment";
  change({{"b", "B 2"}}, 10);
  change({{"b", "B 2"}, {"c", "C"}}, 20);
  change({{"b", "B 2"}}, 30);
  EXPECT_EQ(apps.told, (std::vector<std::vector<RemovedApp>>{{{"a", "A"}}, {{"c", "C"}}}));
}

class FixedRegistry final : public AppRegistry {
 public:
  std::vector<RegisteredApp> apps() const override {
    return {{.path = "/x", .id = "a", .name = "A"}, {.path = "/y", .id = "a", .name = "A copy"}};
  }
  bool isInstalled(std::string_view) const override { return false; }
  std::vector<std::string> watchedFolders() const override { return {}; }
};

TEST(AppRemovalWatcher, ASnapshotHoldsEachIdOnce) {
  EXPECT_EQ(installedSnapshot(FixedRegistry()), (Snapshot{{"a", "A"}}));
}

}  // namespace
}  // namespace lumenary
