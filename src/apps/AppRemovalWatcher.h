#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/AppRegistry.h"

namespace lumenary {

struct RemovedApp {
  std::string bundleID;  ///< or desktop id, Flatpak id, name of the snap
  std::string name;

  bool operator==(const RemovedApp&) const = default;
};

/// What is told of apps that left something behind.
struct RemovedAppsNotice {
  std::vector<RemovedApp> apps;
  std::int64_t leftoverBytes = 0;

  /// None where nothing was removed, and for less than a mebibyte: that isn't worth a word.
  static std::optional<RemovedAppsNotice> of(std::vector<RemovedApp> apps, std::int64_t leftoverBytes);
  /// "Maps", "Maps and 2 more".
  std::string title() const;
  /// "Maps left 12 MB behind".
  std::string message() const;
  static constexpr auto body = "Open Hearthkeep › Apps › Leftovers to see what it left and remove it.";

  bool operator==(const RemovedAppsNotice&) const = default;
};

/// Notices that apps went. Whoever owns it checks when the folders of apps have changed and come to rest. Its
/// operations block; one thread at a time.
class AppRemovalWatcher {
 public:
  using Snapshot = std::map<std::string, std::string>;  ///< the names of the installed apps by their ids

  /// Copying or removing one app makes many changes; they are one check, this long after the last.
  static constexpr std::chrono::milliseconds settlingTime{4000};

  AppRemovalWatcher(std::function<Snapshot()> snapshot, std::function<bool(const std::string&)> isInstalledAnywhere)
      : snapshot_(std::move(snapshot)), isInstalledAnywhere_(std::move(isInstalledAnywhere)) {}

  /// Takes the baseline: what was removed before isn't noticed.
  void start();
  /// What went since the last look.
  std::vector<RemovedApp> check();

  /// What was there before and isn't any more, in the order of the names; not what the system brings along, nor what
  /// still stands anywhere.
  static std::vector<RemovedApp> removedApps(const Snapshot& before, const Snapshot& after,
                                             const std::function<bool(const std::string&)>& isInstalledAnywhere);

 private:
  std::function<Snapshot()> snapshot_;
  std::function<bool(const std::string&)> isInstalledAnywhere_;
  Snapshot known_;
};

/// The snapshot of what a registry knows; of two apps with one id one stays.
AppRemovalWatcher::Snapshot installedSnapshot(const AppRegistry& registry);

}  // namespace lumenary
