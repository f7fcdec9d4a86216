#pragma once

#include <functional>
#include <optional>
#include <set>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "apps/AppBundles.h"
#include "apps/AppInventory.h"
#include "apps/AppLayout.h"
#include "platform/DurableFiles.h"
#include "platform/FileReader.h"
#include "storage/FolderByteTotals.h"

namespace lumenary {

/// The inputs of one inventory. It changes nothing on the disk.
struct AppInventoryScanner {
  std::string home;  ///< standardised
  AppLayout layout;
  std::vector<std::string> applicationFolders{};  ///< where bundles stand
  /// The apps, where they don't stand in folders as bundles do; of two of one identifier or name the last one counts.
  std::optional<std::vector<FoundBundle>> bundles{};
  bool includesContainers = true;  ///< otherwise they aren't so much as listed
  FolderByteTotals knownSizes{};   ///< of folders, from a scan: what is in it isn't measured again
  std::set<std::string, std::less<>> runningBundleIDs{};
  /// Whether an app of this identifier stands outside of the Trash; without it nothing counts as left by its looks.
  std::function<bool(std::string_view)> isInstalledAnywhere{};
  std::string ownBundleID{};
  std::function<Date()> now{};  ///< must be set

  /// Blocks for as long as the disk takes. A stop request ends it early with what it has. May run on any thread.
  AppInventory inventory(const FileReader& reader, DurableFiles& files, std::stop_token stop = {}) const;
};

}  // namespace lumenary
