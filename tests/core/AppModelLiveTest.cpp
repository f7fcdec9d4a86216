#include <gtest/gtest.h>

#include "storage/DiskSampleStore.h"
#include "support/ModelHome.h"

namespace lumenary {
namespace {

using namespace std::chrono_literals;

struct AppModelLive : testing::Test {
  ModelHome home;
  AppModel& model = home.makeModel();

  AppModelLive() { home.settle(); }
  void installs(const std::string& id, const std::string& name) {
    home.registry.list.push_back({.path = "/usr/share/applications/" + id + ".desktop", .id = id, .name = name});
  }
  /// The folders of apps changed, and have come to rest.
  void appsChange() {
    home.owner.signal(home.folderWatcher.events());
    home.advance(5s);
  }
};

TEST_F(AppModelLive, APassReadsWhatIsAskedForAndPortsEveryFiveMinutes) {
  home.sockets.sockets = {{.protocol = SocketProtocol::tcp, .address = "127.0.0.1", .port = 3000, .number = 1}};
  model.monitoringCoordinator().start();
  home.settle();
  EXPECT_EQ(model.systemHistory->size(), 1U);
  EXPECT_TRUE(*model.hasPortSample);
  EXPECT_FALSE(*model.hasProcessSample) << "nobody looks at processes";
  EXPECT_EQ(model.ports->size(), 1U);
  home.sockets.sockets.clear();
  home.advance(299s);
  EXPECT_EQ(model.ports->size(), 1U);
  home.advance(31s);
  EXPECT_TRUE(model.ports->empty());
  EXPECT_EQ(model.systemHistory->size(), 12U);
}

TEST_F(AppModelLive, TheHistoryHoldsAnHourAndNoMoreThan1800Readings) {
  model.monitoringCoordinator().set(MonitoringSurface::mainWindow, true);
  model.monitoringCoordinator().start();
  home.advance(3700s, 2s);
  EXPECT_LE(model.systemHistory->size(), 1800U);
  EXPECT_GE(model.systemHistory->size(), 1790U);
  EXPECT_LE(model.activityHistory->size(), 240U);
}

TEST_F(AppModelLive, ADiskSampleIsTakenEverySixHours) {
  model.monitoringCoordinator().start();
  home.advance(2min, 30s);
  const auto samples = [&] { return DiskSampleStore::load(*home.platform.defaults).size(); };
  EXPECT_EQ(samples(), 1U);
  home.owner.advance(5h + 57min);
  home.settle();
  EXPECT_EQ(samples(), 1U);
  home.advance(2min, 30s);
  EXPECT_EQ(samples(), 2U);
}

TEST_F(AppModelLive, ARemovedAppThatLeftSomethingIsToldOfOnceADay) {
  home.home.build({{".var/app/org.example.Maps/cache/x", 2'000'000}, {".var/app/org.example.Chat/cache/x", 3'000'000}});
  for (const char* const name : {"Maps", "Chat"}) {
    home.registry.list.push_back({.path = std::string("/flatpak/") + name,
                                  .id = std::string("org.example.") + name,
                                  .name = name,
                                  .origin = AppOrigin::flatpak});
  }
  appsChange();
  EXPECT_EQ(*model.removedAppsNotice, std::nullopt);
  home.registry.list.erase(home.registry.list.begin());
  appsChange();
  ASSERT_TRUE(*model.removedAppsNotice);
  EXPECT_EQ((*model.removedAppsNotice)->title(), "Maps");
  EXPECT_EQ(home.desktop.notes,
            (std::vector<std::string>{"app-removed: Maps left 2 MB behind / Open Hearthkeep › Apps › Leftovers to see "
                                      "what it left and remove it."}));
  EXPECT_EQ(model.roomInputs().removedAppName, "Maps");
  home.registry.list.clear();
  appsChange();
  EXPECT_EQ((*model.removedAppsNotice)->title(), "Chat");
  EXPECT_EQ(home.desktop.notes.size(), 1U) << "once a day is enough";
}

TEST_F(AppModelLive, AnEventStormIsOneCheckFourSecondsAfterTheLast) {
  installs("org.example.maps", "Maps");
  appsChange();
  home.registry.list.clear();
  for (int event = 0; event < 3; ++event) {
    home.owner.signal(home.folderWatcher.events());
    home.advance(1500ms, 500ms);
  }
  EXPECT_EQ(home.workers.waitingIn(Lane::watch), 0U);
  home.owner.advance(2400ms);
  EXPECT_EQ(home.workers.waitingIn(Lane::watch), 0U);
  home.owner.advance(200ms);
  EXPECT_EQ(home.workers.waitingIn(Lane::watch), 1U);
}

TEST_F(AppModelLive, DataOfAnAppGoesAndLeavesItsList) {
  home.home.build({{".var/app/org.example.Maps/cache/x", 2'000'000}});
  home.await(model.refreshApps());
  ASSERT_EQ((*model.appInventory)->leftovers.size(), 1U);
  EXPECT_EQ(home.await(model.clear(false, {}, (*model.appInventory)->leftovers, {})), 0U);
  EXPECT_TRUE((*model.appInventory)->leftovers.empty());
  EXPECT_FALSE(standsAt(home.at(".var/app/org.example.Maps")));
  EXPECT_EQ(model.cleanupTransactions->at(0).source, CleanupTransaction::Source::apps);
}

TEST_F(AppModelLive, RoomsSayWhatTheModelKnows) {
  model.monitoringCoordinator().set(MonitoringSurface::mainWindow, true);
  model.monitoringCoordinator().set(MonitoringSurface::memory, true);
  home.processes.next.processes = {{.pid = 1, .footprintBytes = 5, .appPath = "/bin/a"},
                                   {.pid = 2, .footprintBytes = 9, .appPath = "/opt/b"}};
  model.monitoringCoordinator().start();
  home.settle();
  const RoomInputs inputs = model.roomInputs();
  EXPECT_DOUBLE_EQ(inputs.usedFraction.value(), 0.6);
  EXPECT_EQ(inputs.availableBytes, 400'000'000'000);
  EXPECT_EQ(inputs.scannedAt, std::nullopt);
  EXPECT_EQ(inputs.topMemoryBytes, 14U);
  EXPECT_TRUE(inputs.memoryPressure && inputs.memoryFraction);
  home.volumes.all.totalBytes = 0;
  home.advance(3s);
  EXPECT_EQ(model.roomInputs().usedFraction, 0.0);
}

TEST_F(AppModelLive, QuittingTellsWhyAnAppStillRuns) {
  AppMemoryUsage usage{.key = "a", .name = "A", .bundlePath = "/apps/a", .mainPID = 5, .pids = {5}};
  EXPECT_EQ(home.await(model.quitAndConfirm(usage)),
            "It may have closed already, or it declined the request. Try quitting it from the app itself.");
  home.processes.running[5] = {.record = {.pid = 5, .uid = 1000}, .appPath = "/apps/a"};
  home.control.onTerminate = [&](std::int32_t pid) { home.processes.running.erase(pid); };
  EXPECT_EQ(home.await(model.quitAndConfirm(usage)), std::nullopt);
}

}  // namespace
}  // namespace lumenary
