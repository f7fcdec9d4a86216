#include <gtest/gtest.h>

#include "apps/AppRemovalWatcher.h"

namespace lumenary {
namespace {

using Snapshot = AppRemovalWatcher::Snapshot;

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

TEST(AppRemovalWatcher, TellsEachRemovalOnce) {
  Snapshot installed = {{"a", "A"}, {"b", "B"}};
  AppRemovalWatcher watcher([&] { return installed; }, [](const std::string&) { return false; });
  using Removed = std::vector<RemovedApp>;
  installed.emplace("before", "Before");
  watcher.start();
  installed = {{"a", "A"}, {"b", "B 2"}};
  EXPECT_EQ(watcher.check(), (Removed{{"before", "Before"}}));
  EXPECT_EQ(watcher.check(), Removed{});
  installed = {{"b", "B 2"}, {"c", "C"}};
  EXPECT_EQ(watcher.check(), (Removed{{"a", "A"}}));
  installed = {{"b", "B 2"}};
  EXPECT_EQ(watcher.check(), (Removed{{"c", "C"}}));
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
