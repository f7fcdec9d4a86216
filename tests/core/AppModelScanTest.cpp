#include <gtest/gtest.h>

#include "support/ModelHome.h"

namespace lumenary {
namespace {

using namespace std::chrono_literals;

constexpr int mebibyte = 1'048'576;

struct AppModelScan : testing::Test {
  ModelHome home;

  AppModelScan() {
    home.home.build({{"Documents/film.mkv", 3 * mebibyte}, {"Documents/notes.txt", 10}, {".cache/yarn/v6/x", 10}});
  }
  std::string root() const { return home.home.root(); }
  /// Only the work of scans, stored ones included, and what it leads to.
  void runScan() {
    home.workers.runOne(Lane::interactive);
    home.owner.runAll();
  }
  static std::string rootOf(const AppModel& model) {
    return *model.storageResult ? (*model.storageResult)->root.path : "none";
  }
};

TEST_F(AppModelScan, AScanIsShownStoredAndExplained) {
  AppModel& model = home.makeModel();
  home.settle();
  EXPECT_EQ(*model.storageResult, nullptr) << "nothing is scanned by itself";
  EXPECT_EQ(*model.tidyPlan, std::nullopt);

  model.scanStorage(home.url());
  EXPECT_TRUE(*model.isScanning);
  EXPECT_EQ((*model.scanProgress)->currentPath, root());
  home.settle();
  EXPECT_FALSE(*model.isScanning);
  ASSERT_EQ(rootOf(model), root());
  EXPECT_GE((*model.storageResult)->totalBytes, 3 * mebibyte);
  EXPECT_EQ((*model.scanProgress)->itemCount, (*model.storageResult)->scannedItemCount);
  EXPECT_TRUE(home.store->load(root()).value());
  EXPECT_TRUE(*model.wardrobeSnapshot && *model.closetModel && *model.tidyPlan);
  EXPECT_TRUE(model.scanHistory->empty()) << "only scans of the startup disk make history";
}

TEST_F(AppModelScan, OfTwoScansInARowOnlyTheSecondIsShown) {
  AppModel& model = home.makeModel(AppModel::Services::none);
  model.scanStorage(home.url());
  model.scanStorage({.path = home.at("Documents"), .isFolder = true});
  runScan();
  EXPECT_TRUE(*model.isScanning) << "the first has ended";
  EXPECT_EQ(rootOf(model), "none");
  EXPECT_EQ((*model.scanProgress)->currentPath, home.at("Documents"));
  runScan();
  EXPECT_FALSE(*model.isScanning);
  EXPECT_EQ(rootOf(model), home.at("Documents"));
}

TEST_F(AppModelScan, AfterACancelNothingOfTheScanIsShown) {
  AppModel& model = home.makeModel(AppModel::Services::none);
  for (const bool hasEnded : {false, true}) {
    SCOPED_TRACE(hasEnded);
    model.scanStorage(home.url());
    if (hasEnded) {
      home.workers.runOne(Lane::interactive);  // its result is on the way
    }
    model.cancelStorageScan();
    EXPECT_FALSE(*model.isScanning);
    home.settle();
    EXPECT_EQ(rootOf(model), "none");
    EXPECT_EQ(*model.scanError, std::nullopt);
    EXPECT_EQ((*model.scanProgress)->itemCount, 0) << "progress that comes late is dropped";
  }
}

TEST_F(AppModelScan, AFailureIsToldAndTheFormerScanStays) {
  AppModel& model = home.makeModel(AppModel::Services::none);
  home.scanHome();
  model.scanStorage({.path = home.at("gone"), .isFolder = true});
  home.settle();
  EXPECT_EQ(*model.scanError, std::string(message(StorageScannerError::rootUnavailable)));
  EXPECT_FALSE(*model.isScanning);
  EXPECT_EQ(rootOf(model), root());
  home.scanHome();
  EXPECT_EQ(*model.scanError, std::nullopt);
}

TEST_F(AppModelScan, ADriveShowsItsStoredScanAndIsScannedWhereThereIsNone) {
  AppModel& model = home.makeModel(AppModel::Services::none);
  model.selectDrive(home.url());
  EXPECT_FALSE(*model.isScanning) << "the store is asked first";
  home.settle();
  const auto scanned = (*model.storageResult)->scannedAt;

  model.selectDrive({.path = home.at("Documents"), .isFolder = true});
  EXPECT_EQ(*model.storageResult, nullptr);
  home.settle();
  home.owner.advance(10s);
  model.selectDrive(home.url());
  model.selectDrive(home.url());
  home.settle();
  EXPECT_EQ((*model.storageResult)->scannedAt, scanned);
  model.selectDrive(home.url());
  EXPECT_TRUE(home.workers.isIdle()) << "it is shown already";
}

TEST_F(AppModelScan, ADriveThatIsUnpluggedMidScanGivesWayToTheStartupDisk) {
  home.mounts.all.push_back({.id = 2, .point = "/media/stick", .type = "ext4", .device = "8:2", .source = "/dev/sdb1"});
  AppModel& model = home.makeModel();
  home.settle();
  ASSERT_EQ(model.drives->size(), 2U);
  model.selectDrive({.path = "/media/stick", .isFolder = true});
  home.settle();
  model.scanStorage({.path = home.at("Documents"), .isFolder = true});
  home.mounts.all.pop_back();
  home.owner.signal(home.mountWatcher.events());
  home.owner.advance(1s);
  home.workers.runOne(Lane::watch);
  home.owner.runAll();
  EXPECT_EQ(model.selectedDrive->path, "/");
  EXPECT_FALSE(*model.isScanning);
  EXPECT_EQ(model.drives->size(), 1U);
  home.workers.runOne(Lane::interactive);
  home.owner.runAll();
  EXPECT_EQ(rootOf(model), "none") << "the scan's result is of a drive that is away";
  model.cancelStorageScan();
  EXPECT_EQ((*model.scanProgress)->itemCount, 0);
}

TEST_F(AppModelScan, WhoAsksWhileAScanIsReplacedDerivesFromTheNewOne) {
  AppModel& model = home.makeModel(AppModel::Services::none);
  home.scanHome();
  model.closetModel.observe([&] {
    if (*model.closetModel == nullptr) {
      model.run(model.prepareStorageModels(true));
    }
  });
  model.scanStorage({.path = home.at("Documents"), .isFolder = true});
  home.settle();
  ASSERT_TRUE(*model.closetModel);
  EXPECT_TRUE((*model.closetModel)->childrenByParent().contains(home.at("Documents")));
  EXPECT_FALSE((*model.closetModel)->childrenByParent().contains(root())) << "of the scan before";
}

TEST_F(AppModelScan, AMountThatIsNoDriveChangesNothing) {
  AppModel& model = home.makeModel();
  home.settle();
  model.selectDrive(home.url());
  int told = 0;
  model.drives.observe([&] { ++told; });
  for (int mount = 0; mount < 5; ++mount) {
    home.owner.signal(home.mountWatcher.events());
  }
  home.owner.advance(1s);
  EXPECT_EQ(home.workers.waitingIn(Lane::watch), 1U);
  home.workers.runOne(Lane::watch);
  home.owner.runAll();
  EXPECT_EQ(told, 0);
  EXPECT_EQ(model.selectedDrive->path, root());
}

TEST_F(AppModelScan, InsightsOfASupersededScanAreDropped) {
  AppModel& model = home.makeModel(AppModel::Services::none);
  home.scanHome();
  const TidyPlan before = **model.tidyPlan;
  home.home.build({{".cache/pip/http/big", 9 * mebibyte}});
  model.scanStorage(home.url());
  runScan();
  home.workers.runOne(Lane::store);
  home.owner.runAll();
  ASSERT_EQ(home.workers.waitingIn(Lane::insights), 1U);
  model.scanStorage(home.url());
  while (home.workers.waitingIn(Lane::interactive) > 0) {
    home.workers.runOne(Lane::interactive);
  }
  home.workers.runOne(Lane::insights);  // the next scan and they are on the way
  home.owner.runAll();
  EXPECT_EQ(**model.tidyPlan, before);
  home.settle();
  EXPECT_NE(**model.tidyPlan, before);
}

TEST_F(AppModelScan, SeveralWhoAskGetOneAnswer) {
  AppModel& model = home.makeModel(AppModel::Services::none);
  home.scanHome();
  model.scanStorage(home.url());
  runScan();
  int closets = 0;
  model.closetModel.observe([&] { closets += *model.closetModel ? 1 : 0; });
  for (int asking = 0; asking < 3; ++asking) {
    model.run(model.prepareStorageModels(asking > 0));
    model.run(model.refreshInsights());
  }
  EXPECT_EQ(home.workers.waitingIn(Lane::insights), 1U);
  home.settle();
  EXPECT_EQ(closets, 1);
  EXPECT_TRUE(*model.wardrobeSnapshot);
}

TEST_F(AppModelScan, ResultsThatComeAfterTheModelIsGoneHarmNobody) {
  AppModel& model = home.makeModel();
  model.scanStorage(home.url());
  home.workers.runOne(Lane::interactive);
  model.refreshTrashSize();
  model.run(model.refreshApps());
  home.model.reset();
  home.settle();
  EXPECT_EQ(home.owner.timerCount(), 0U);
  EXPECT_FALSE(home.owner.isWatching(home.mountWatcher.events()) ||
               home.owner.isWatching(home.supportWatcher.events()));
}

TEST_F(AppModelScan, EqualValuesAreNotToldOfAgain) {
  AppModel& model = home.makeModel();
  home.settle();
  int told = 0;
  const auto count = [&] { ++told; };
  model.ports.observe(count);
  model.drives.observe(count);
  model.appMemory.observe(count);
  model.startupForecastDays.observe(count);
  model.monitoringCoordinator().set(MonitoringSurface::mainWindow, true);
  model.monitoringCoordinator().set(MonitoringSurface::overview, true);
  model.monitoringCoordinator().start();
  home.advance(20s);
  EXPECT_TRUE(*model.hasProcessSample && *model.hasPortSample);
  EXPECT_EQ(told, 0);
  home.processes.next.processes.push_back({.pid = 7, .footprintBytes = 1, .appPath = "/bin/x"});
  home.advance(10s);
  EXPECT_EQ(told, 1);
}

}  // namespace
}  // namespace lumenary
