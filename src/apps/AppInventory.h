#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "apps/AppDataKind.h"
#include "base/Date.h"
#include "base/FileURL.h"
#include "storage/AppDataVerdict.h"

/// Which apps are installed, what each keeps, and what those that are gone have left. Sizes are allocated bytes.
namespace lumenary {

/// One thing that an app keeps, known by its `url`.
struct AppDataItem {
  FileURL url;
  AppDataKind kind = AppDataKind::caches;
  std::string title;
  bool isDirectory = false;
  std::int64_t bytes = 0;
  AppDataVerdict verdict = AppDataVerdict::safe;
  std::string explanation;

  bool operator==(const AppDataItem&) const = default;
};

std::int64_t totalBytesOf(const std::vector<AppDataItem>& items);

/// An app, known by its `url`.
struct InstalledApp {
  FileURL url;
  std::string name;
  std::string bundleID;
  std::optional<std::string> version{};
  std::int64_t appBytes = 0;  ///< of the app itself
  bool isRunning = false;
  std::vector<AppDataItem> items{};  ///< largest first

  /// With all items.
  std::int64_t totalBytes() const;
  /// Of the items that may go.
  std::int64_t safeBytes() const;
  /// The same without what a running app works in.
  std::int64_t clearableBytes() const;

  bool operator==(const InstalledApp&) const = default;
};

/// What one removed app left, known by its `bundleID`.
struct LeftoverGroup {
  std::string bundleID;              ///< as the folder on the disk spells it
  std::vector<AppDataItem> items{};  ///< largest first

  /// "com.example.some-tool" as "some tool (example)"; an identifier of fewer than three pieces as it is.
  std::string displayName() const;

  bool operator==(const LeftoverGroup&) const = default;
};

struct AppInventory {
  std::vector<InstalledApp> apps;        ///< largest first, with what they keep
  std::vector<LeftoverGroup> leftovers;  ///< largest first
  Date scannedAt;                        ///< when the scan ended
  bool includesContainers = false;

  std::int64_t safeBytes() const;
  std::int64_t leftoverBytes() const;
  /// Things at these paths have gone; a group with nothing left goes with them.
  void removeItems(const std::set<std::string>& paths);
};

}  // namespace lumenary
