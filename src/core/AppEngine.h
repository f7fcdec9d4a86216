#pragma once

#include <memory>

#include "apps/AppRemovalWatcher.h"
#include "apps/AppSystem.h"
#include "cleanup/CleanupActs.h"
#include "cleanup/CleanupCatalog.h"
#include "cleanup/StorageTrashGate.h"
#include "monitoring/PortInspector.h"
#include "monitoring/ProcessInspector.h"
#include "platform/Platform.h"
#include "storage/ScanStore.h"
#include "storage/StorageScanner.h"
#include "storage/VolumeMetricsService.h"

namespace lumenary {

/// The services of the model, which its jobs share with it: they live until the last job that uses them has ended.
struct AppEngine {
  /// Both must outlive the value.
  AppEngine(Platform& of, ScanStore& keptIn);
  AppEngine(const AppEngine&) = delete;
  AppEngine& operator=(const AppEngine&) = delete;

  std::shared_ptr<const StorageTrashGate> makeGate() const;

  Platform& platform;
  ScanStore& store;
  const Places places;  ///< with the names that the desktop gave the person's folders
  StorageScanner scanner;
  VolumeMetricsService volumeMetrics;
  ProcessInspector processInspector;
  PortInspector portInspector;
  CleanupCatalog catalog;
  std::unique_ptr<AppSystem> apps;
  AppRemovalWatcher appRemovalWatcher;
  CleanupActs acts;
};

}  // namespace lumenary
