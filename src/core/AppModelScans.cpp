#include <algorithm>
#include <expected>
#include <utility>

#include "core/AppModel.h"
#include "storage/DiskSampleStore.h"

// Scans, what is derived from them, and drives.

namespace lumenary {

Job<AppModel::Scan> AppModel::loadScan(const std::string& root) {
  return scheduler_.start(Lane::interactive,
                          [engine = engine_, root, share = scheduler_.sharer()](const std::stop_token&) -> Scan {
                            auto loaded = engine->store.load(root);
                            return loaded && *loaded ? share(**std::move(loaded)) : nullptr;
                          });
}

/// Whatever belongs to the former request ends silently at its next step.
UUID AppModel::newScanRequest() {
  scanStop_.request_stop();
  scanStop_ = std::stop_source();
  scanRequestID_ = UUID::random();
  return scanRequestID_;
}

void AppModel::scanStorage(const FileURL& url) {
  const UUID request = newScanRequest();
  isScanning.setIfChanged(true);
  scanError.setIfChanged(std::nullopt);
  scanProgress.set(ScanProgress{.itemCount = 0, .currentPath = url.path, .measuredBytes = 0, .categoryByteTotals = {}});
  volumeSnapshot.setIfChanged(capture(url));
  run(scan(url, request, scanStop_));
}

void AppModel::cancelStorageScan() {
  newScanRequest();
  isScanning.setIfChanged(false);
}

Task<> AppModel::scan(FileURL url, UUID request, std::stop_source stop) {
  const auto isCurrent = [&] { return request == scanRequestID_ && !stop.stop_requested(); };
  const auto show = [this, alive = std::weak_ptr(lifetime_), request, &owner = owner()](const ScanProgress& progress) {
    owner.post([this, alive, request, progress] {
      if (!alive.expired() && request == scanRequestID_ && *isScanning) {
        scanProgress.set(progress);
      }
    });
  };
  using Result = std::expected<Scan, StorageScannerError>;
  const Result result = co_await scheduler_.start(
      Lane::interactive,
      [engine = engine_, root = url.path, show, share = scheduler_.sharer()](const std::stop_token& token) -> Result {
        auto found = engine->scanner.scan(root, show, token);
        return found ? Result(share(*std::move(found))) : std::unexpected(found.error());
      },
      stop);
  if (!isCurrent()) {
    co_return;
  }
  if (!result) {
    isScanning.setIfChanged(false);
    scanError.set(std::string(message(result.error())));
    co_return;
  }
  setStorageResult(*result);
  if (!isCurrent()) {
    co_return;
  }
  isScanning.setIfChanged(false);
  co_await saveScan(*result);
  if (!isCurrent()) {
    co_return;
  }
  volumeSnapshot.setIfChanged(capture(url));
  if (url.path == macVolumeRoot.path) {
    co_await recordScan(*result);
  }
  co_await deriveFromScan();
}

Job<bool> AppModel::saveScan(Scan scan) {
  return scheduler_.start(Lane::store, [engine = engine_, scan = std::move(scan)](const std::stop_token&) {
    return engine->store.save(*scan).has_value();
  });
}

Task<> AppModel::recordScan(Scan scan) {
  const auto& volume = *volumeSnapshot;
  const std::int64_t used =
      volume ? std::max<std::int64_t>(0, volume->totalBytes - volume->availableBytes) : scan->totalBytes;
  const ScanHistoryPoint point{.date = scan->scannedAt, .usedBytes = used, .categoryTotals = scan->categoryTotals()};
  scanHistory.set(co_await scheduler_.start(
      Lane::store, [engine = engine_, point](const std::stop_token&) { return engine->store.appendHistory(point); }));
}

Task<> AppModel::deriveFromScan() {
  Task<> insights = refreshInsights();
  insights.start();
  co_await prepareStorageModels(true);
  co_await insights;
}

void AppModel::setStorageResult(const Scan& scan) {
  ++storageRevision_;
  const auto end = [](auto& task) {
    if (task) {
      task->cancel();
      task.reset();
    }
  };
  end(wardrobeTask_);
  end(closetTask_);
  end(insightsTask_);
  // All of it is as it should be before anybody is told.
  const bool hadModels = *wardrobeSnapshot || *closetModel;
  wardrobeSnapshot.assign(nullptr);
  closetModel.assign(nullptr);
  storageResult.assign(scan);
  if (scan) {
    scheduler_.run(Lane::utility, [scan] { scan->children(scan->root.path); });
  }
  if (hadModels) {
    wardrobeSnapshot.tell();
    closetModel.tell();
  }
  storageResult.tell();
}

template <class Model>
Task<> AppModel::publishDerived(std::optional<Job<std::shared_ptr<const Model>>>& task,
                                Field<std::shared_ptr<const Model>>& field, std::uint64_t revision) {
  if (!task) {
    co_return;
  }
  const auto job = *task;
  const auto derived = co_await job;
  if (revision == storageRevision_) {
    field.setIfChanged(derived);
    task.reset();
  }
}

Task<> AppModel::prepareStorageModels(bool includeCloset) {
  if (!*storageResult || !*volumeSnapshot) {
    co_return;
  }
  const std::uint64_t revision = storageRevision_;
  const auto derive = [&]<class Model>(std::type_identity<Model>) {
    return scheduler_.start(Lane::interactive, [scan = *storageResult, volume = **volumeSnapshot, gate = gate_,
                                                engine = engine_, share = scheduler_.sharer()](const std::stop_token&) {
      return share(Model(*scan, volume, *gate));
    });
  };
  if (!*wardrobeSnapshot && !wardrobeTask_) {
    wardrobeTask_ = derive(std::type_identity<WardrobeSnapshot>());
  }
  if (includeCloset && !*closetModel && !closetTask_) {
    closetTask_ = derive(std::type_identity<ClosetModel>());
  }
  co_await publishDerived(wardrobeTask_, wardrobeSnapshot, revision);
  if (revision == storageRevision_) {
    co_await publishDerived(closetTask_, closetModel, revision);
  }
}

/// Nothing follows from a mount that is no drive. A mount table that can't be read says nothing.
Task<> AppModel::indexScan() {
  co_await scheduler_.start(Lane::interactive, [scan = *storageResult](const std::stop_token&) {
    return scan && !scan->children(scan->root.path).empty();
  });
}

Task<> AppModel::drivesChanged() {
  struct Found {
    std::vector<DriveInfo> drives;
    std::shared_ptr<const StorageTrashGate> gate;
    bool selectedStands = false;
  };
  Found found =
      co_await scheduler_.start(Lane::watch, [engine = engine_, path = selectedDrive->path](const std::stop_token&) {
        return Found{.drives = engine->volumeMetrics.mountedDrives(),
                     .gate = engine->makeGate(),
                     .selectedStands = engine->platform.reader->exists(path)};
      });
  gate_ = std::move(found.gate);
  if (found.drives.empty() || found.drives == *drives) {
    co_return;
  }
  const auto isSelected = [&](const DriveInfo& drive) { return drive.url.path == selectedDrive->path; };
  const bool isFolder = !std::ranges::any_of(*drives, isSelected);  // that a person chose in a drive's place
  drives.set(std::move(found.drives));
  if (std::ranges::any_of(*drives, isSelected) || (isFolder && found.selectedStands)) {
    refreshVolumeSnapshot();
  } else {
    selectDrive(macVolumeRoot);
  }
  refreshTrashSize();
  monitoring_.restart();
}

void AppModel::selectDrive(const FileURL& url) {
  if (url.path == selectedDrive->path && *storageResult && (*storageResult)->root.path == url.path) {
    return;
  }
  const UUID request = newScanRequest();
  isScanning.setIfChanged(false);
  selectedDrive.setIfChanged(url);
  volumeSnapshot.setIfChanged(capture(url));
  setStorageResult(nullptr);
  duplicates.setIfChanged({});
  junk_.clear();
  tidyPlan.setIfChanged(std::nullopt);
  run(loadDrive(url, request));
}

Task<> AppModel::loadDrive(FileURL url, UUID request) {
  const Scan scan = co_await loadScan(url.path);
  if (request != scanRequestID_) {
    co_return;
  }
  if (!scan || scan->root.path != url.path || !scan->folderByteTotals) {
    scanStorage(url);
    co_return;
  }
  setStorageResult(scan);
  co_await deriveFromScan();
}

void AppModel::recordDiskSample() {
  constexpr std::chrono::seconds sampleDistance{21'600};
  const Date date = now();
  if (isRecordingSample_ || (!diskSamples_.empty() && date - diskSamples_.back().date < sampleDistance)) {
    return;
  }
  if (const auto volume = capture(macVolumeRoot)) {
    const std::int64_t used = std::max<std::int64_t>(0, volume->totalBytes - volume->availableBytes);
    run(writeDiskSample({.date = date, .usedBytes = used}));
  }
}

Task<> AppModel::writeDiskSample(DiskSample sample) {
  isRecordingSample_ = true;
  diskSamples_ = co_await scheduler_.start(
      Lane::store, [engine = engine_, sample, samples = diskSamples_](const std::stop_token&) {
        return DiskSampleStore::append(sample, samples, *engine->platform.defaults);
      });
  isRecordingSample_ = false;
  refreshDiskForecast(std::nullopt);
}

void AppModel::refreshDiskForecast(std::optional<VolumeSnapshot> volume) {
  if (!volume) {
    volume = capture(macVolumeRoot);
  }
  if (!volume) {
    return;
  }
  std::vector<DiskSample> samples;
  samples.reserve(scanHistory->size() + diskSamples_.size());
  for (const ScanHistoryPoint& point : *scanHistory) {
    samples.push_back({.date = point.date, .usedBytes = point.usedBytes});
  }
  samples.insert(samples.end(), diskSamples_.begin(), diskSamples_.end());
  startupForecastDays.setIfChanged(DiskForecast::daysUntilFull(samples, volume->availableBytes, now()));
}

std::optional<double> AppModel::diskForecastDays() const {
  return selectedDrive->path == macVolumeRoot.path ? *startupForecastDays : std::nullopt;
}

}  // namespace lumenary
