#pragma once

#include <cstdint>
#include <expected>
#include <memory>
#include <set>
#include <stop_token>
#include <string>
#include <vector>

#include "apps/AppInventory.h"
#include "apps/BackgroundItem.h"
#include "cleanup/BusyTools.h"
#include "cleanup/CleanupCatalog.h"
#include "cleanup/CleanupRefusal.h"
#include "platform/Platform.h"
#include "storage/FolderByteTotals.h"

namespace lumenary {

/// What apps there are on this system and what starts by itself: one value that knows where the system keeps such
/// things, so that whoever asks needn't. Everything blocks, and may be called from any thread.
class AppSystem {
 public:
  virtual ~AppSystem() = default;

  struct Request {
    bool includesContainers = true;
    FolderByteTotals knownSizes{};  ///< from a scan: what is in it isn't measured again
    std::set<std::string, std::less<>> runningBundleIDs{};
  };
  /// One at a time.
  virtual AppInventory inventory(Request request, const std::stop_token& stop) = 0;
  /// What tells that the cache of an installed app is in use.
  virtual std::vector<InUseMarker> busyMarkers() = 0;

  virtual std::vector<BackgroundItem> backgroundItems(InstalledAppNames installedApps) = 0;
  virtual bool canSwitch(const BackgroundItem& item) = 0;
  /// The next list shows what became of it.
  virtual void setEnabled(const BackgroundItem& item, bool enabled) = 0;
  virtual std::expected<void, CleanupRefusal> remove(const BackgroundItem& item) = 0;
};

/// The one of this build. Both must outlive it.
std::unique_ptr<AppSystem> makeAppSystem(const Platform& platform, const CleanupCatalog& catalog);

}  // namespace lumenary
