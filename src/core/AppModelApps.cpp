#include <algorithm>
#include <utility>

#include "base/CheckedSum.h"
#include "core/AppModel.h"
#include "core/NotchInterruption.h"

// Apps, what starts by itself, and what apps that went have left.

namespace lumenary {

Task<> AppModel::refreshApps() {
  if (*isLoadingApps) {
    co_return;
  }
  isLoadingApps.set(true);
  movedDuringInventory_.clear();
  appsTask_ = scheduler_.start(Lane::background,
                               [engine = engine_, scan = *storageResult, includesContainers = *hasFullDiskAccess,
                                date = now()](const std::stop_token& stop) {
                                 AppSystem::Request request{.includesContainers = includesContainers};
                                 if (scan && scan->folderByteTotals) {
                                   request.knownSizes = *scan->folderByteTotals;
                                 }
                                 for (const RunningApp& app : engine->processInspector.runningApps(date)) {
                                   request.runningBundleIDs.insert(app.id);
                                 }
                                 return engine->apps->inventory(std::move(request), stop);
                               });
  const Job<AppInventory> task = *appsTask_;
  AppInventory inventory = co_await task;
  inventory.removeItems(movedDuringInventory_);
  appInventory.set(std::move(inventory));
  appsTask_.reset();
  isLoadingApps.set(false);
}

Task<> AppModel::refreshBackgroundItems() {
  InstalledAppNames names;
  if (const auto& inventory = *appInventory) {
    for (const InstalledApp& app : inventory->apps) {
      names.emplace(app.bundleID, app.name);
    }
  }
  const std::uint64_t request = ++backgroundRequest_;
  auto items =
      co_await scheduler_.start(Lane::utility, [engine = engine_, names = std::move(names)](const std::stop_token&) {
        return engine->apps->backgroundItems(names);
      });
  if (request == backgroundRequest_) {
    backgroundItems.setIfChanged(std::move(items));
  }
}

Task<> AppModel::setBackgroundItem(BackgroundItem item, bool enabled) {
  co_await scheduler_.start(Lane::acts, [engine = engine_, item = std::move(item), enabled](const std::stop_token&) {
    engine->apps->setEnabled(item, enabled);
    return true;
  });
  co_await refreshBackgroundItems();
}

Task<std::optional<std::string>> AppModel::removeBackgroundItem(BackgroundItem item) {
  const auto removed = co_await scheduler_.start(
      Lane::acts,
      [engine = engine_, item = std::move(item)](const std::stop_token&) { return engine->apps->remove(item); });
  co_await refreshBackgroundItems();
  co_return removed ? std::nullopt : std::optional(description(removed.error()));
}

/// The folders in which apps stand; what was removed before the first look isn't noticed.
Task<> AppModel::watchApps() {
  const auto engine = engine_;
  auto folders = co_await scheduler_.start(Lane::watch, [engine](const std::stop_token&) {
    engine->appRemovalWatcher.start();
    return engine->platform.apps->watchedFolders();
  });
  appChanges_ = std::make_unique<FolderChanges>(owner(), *platform_.folderWatcher, AppRemovalWatcher::settlingTime,
                                                [this] { run(checkRemovedApps()); });
  appChanges_->watch(std::move(folders));
}

Task<> AppModel::checkRemovedApps() {
  const auto engine = engine_;
  engine->platform.processes->appsChanged();
  struct Found {
    std::vector<RemovedApp> removed;
    std::vector<std::string> folders;
  };
  Found found = co_await scheduler_.start(Lane::watch, [engine](const std::stop_token&) {
    return Found{.removed = engine->appRemovalWatcher.check(), .folders = engine->platform.apps->watchedFolders()};
  });
  appChanges_->watch(std::move(found.folders));
  if (!found.removed.empty()) {
    co_await appsWereRemoved(std::move(found.removed));
  }
}

Task<> AppModel::appsWereRemoved(std::vector<RemovedApp> removed) {
  // An inventory that is being made may have seen them still.
  while (appsTask_) {
    const Job<AppInventory> former = *appsTask_;
    co_await former;
  }
  co_await refreshApps();
  std::int64_t leftoverBytes = 0;
  if (const auto& inventory = *appInventory) {
    for (const LeftoverGroup& group : inventory->leftovers) {
      if (std::ranges::find(removed, group.bundleID, &RemovedApp::bundleID) != removed.end()) {
        leftoverBytes = saturatedSum(leftoverBytes, totalBytesOf(group.items));
      }
    }
  }
  if (*backgroundItems) {
    co_await refreshBackgroundItems();
  }
  const auto notice = RemovedAppsNotice::of(std::move(removed), leftoverBytes);
  if (!notice) {
    co_return;
  }
  removedAppsNotice.set(notice);
  if (co_await mayInterrupt() && !notchFlash(notice->message())) {
    co_await notify(notice->message(), RemovedAppsNotice::body, "app-removed");
  }
}

Job<bool> AppModel::mayInterrupt() {
  return scheduler_.start(Lane::watch, [engine = engine_, date = now()](const std::stop_token&) {
    return NotchInterruption::claim(*engine->platform.defaults, *engine->platform.session, date);
  });
}

Task<> AppModel::notify(std::string title, std::string body, std::string identifier) {
  co_await scheduler_.start(Lane::utility, [engine = engine_, title = std::move(title), body = std::move(body),
                                            identifier = std::move(identifier)](const std::stop_token&) {
    engine->platform.desktop->notify(title, body, identifier);
    return true;
  });
}

}  // namespace lumenary
