#include "core/AppModel.h"

#include <chrono>
#include <utility>

#include "cleanup/CleanupRecovery.h"
#include "storage/DiskSampleStore.h"

// What the model is made of, and what it starts with.

namespace lumenary {
namespace {

/// The log is written as a whole, in a few steps.
constexpr std::chrono::milliseconds logSettlingTime{250};
/// Containers and packages mount and unmount in bursts.
constexpr std::chrono::milliseconds mountSettlingTime{250};

}  // namespace

const FileURL AppModel::macVolumeRoot{.path = "/", .isFolder = true};

AutoTidy autoTidyOf(std::string_view rawValue) {
  if (rawValue == "weekly") {
    return AutoTidy::weekly;
  }
  return rawValue == "lowSpace" ? AutoTidy::lowSpace : AutoTidy::off;
}

AppModel::AppModel(Platform& platform, ScanStore& store, Scheduler& scheduler, Services services)
    : platform_(platform),
      scheduler_(scheduler),
      engine_(std::make_shared<AppEngine>(platform, store)),
      gate_(engine_->makeGate()),
      metrics_(*platform.systemCounters),
      optimizer_(*platform.appControl, *platform.processes, {},
                 [this](std::function<bool()> work, std::function<void(bool)> done) {
                   run(runElsewhere(std::move(work), std::move(done)));
                 }),
      diskSamples_(DiskSampleStore::load(*platform.defaults)),
      monitoring_(scheduler.owner(), [this](MonitoringDemand demand) { return performMonitoringPass(demand); }) {
  hasFullDiskAccess.set(platform.places.hasFullDiskAccess);
  volumeSnapshot.set(capture(macVolumeRoot));
  drives.setIfChanged(engine_->volumeMetrics.mountedDrives());
  if (services == Services::all) {
    startServices();
  }
}

AppModel::~AppModel() {
  if (isWatchingMounts_) {
    owner().stopWatching(platform_.mountWatcher->events());
  }
  if (mountTimer_) {
    owner().cancelTimer(*mountTimer_);
  }
}

Task<> AppModel::runElsewhere(std::function<bool()> work, std::function<void(bool)> done) {
  const bool answer =
      co_await scheduler_.start(Lane::interactive, [work = std::move(work)](const std::stop_token&) { return work(); });
  done(answer);
}

void AppModel::writeSetting(const std::string& key, const std::string& value) {
  scheduler_.run(Lane::store, [engine = engine_, key, value] {
    static_cast<void>(engine->platform.defaults->setString(key, value));
  });
}

void AppModel::startServices() {
  optimizer_.processes = [this] { return *appMemory; };
  // The stored scan can be large: its decode begins before anything else, and beside it.
  std::optional<Job<Scan>> earlyScan;
  if (!platform_.probe.isDisabled("earlyload")) {
    earlyScan = loadScan(macVolumeRoot.path);
  }
  run(startUp(std::move(earlyScan)));
  run(watchApps());
  observeMachine();
}

Task<> AppModel::startUp(std::optional<Job<Scan>> earlyScan) {
  const auto engine = engine_;
  scanHistory.set(
      co_await scheduler_.start(Lane::store, [engine](const std::stop_token&) { return engine->store.loadHistory(); }));
  refreshDiskForecast(std::nullopt);
  tidyLog.set(
      co_await scheduler_.start(Lane::store, [engine](const std::stop_token&) { return engine->store.loadTidyLog(); }));
  auto log = co_await scheduler_.start(Lane::acts, [engine](const std::stop_token&) {
    recoverInterruptedActs(*engine->platform.files, engine->store, *engine->platform.trash);
    return engine->store.loadCleanupTransactions();
  });
  publishLog(std::move(log), LogState::read);
  const Job<Scan> stored = earlyScan ? *std::move(earlyScan) : loadScan(macVolumeRoot.path);
  const Scan scan = co_await stored;
  if (!scan || scan->root.path != macVolumeRoot.path || !scan->folderByteTotals || *selectedDrive != macVolumeRoot ||
      *storageResult || *isScanning) {
    co_return;
  }
  setStorageResult(scan);
  platform_.probe.mark("scanLoaded");
  Task<> models = prepareStorageModels(true);
  Task<> insights = refreshInsights();
  Task<> inventory = refreshApps();
  models.start();
  insights.start();
  inventory.start();
  co_await models;
  platform_.probe.mark("storageModels");
  co_await insights;
  platform_.probe.mark("insights");
  co_await inventory;
  platform_.probe.mark("apps");
}

/// Every call ends with the model.
void AppModel::observeMachine() {
  logChanges_ = std::make_unique<FolderChanges>(owner(), *platform_.supportWatcher, logSettlingTime,
                                                [this] { run(reloadLog()); });
  logChanges_->watch({engine_->store.support()});
  if (platform_.mountWatcher->events()) {
    isWatchingMounts_ = true;
    owner().watch(platform_.mountWatcher->events(), [this] {
      if (platform_.mountWatcher->read() && !mountTimer_) {
        mountTimer_ = owner().callAfter(mountSettlingTime, [this] {
          mountTimer_.reset();
          run(drivesChanged());
        });
      }
    });
  }
}

void AppModel::applicationBecameActive() {
  hasFullDiskAccess.setIfChanged(platform_.places.hasFullDiskAccess);
  monitoring_.restart();
}

void AppModel::browseStorage(const std::string& target) {
  storageBrowseRequest.set(StorageBrowseRequest{.id = UUID::random(), .target = target});
}

void AppModel::openTrash() {
  scheduler_.run(Lane::interactive, [engine = engine_] { engine->platform.desktop->showTrash(); });
}

}  // namespace lumenary
