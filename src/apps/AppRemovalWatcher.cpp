#include "apps/AppRemovalWatcher.h"

#include <algorithm>
#include <tuple>

#include "base/AppFormatting.h"
#include "base/Text.h"

namespace lumenary {
namespace {

constexpr std::int64_t noticeableBytes = 1 << 20;
constexpr std::string_view systemPrefix = "com.apple.";

}  // namespace

std::optional<RemovedAppsNotice> RemovedAppsNotice::of(std::vector<RemovedApp> apps, std::int64_t leftoverBytes) {
  if (apps.empty() || leftoverBytes < noticeableBytes) {
    return std::nullopt;
  }
  return RemovedAppsNotice{.apps = std::move(apps), .leftoverBytes = leftoverBytes};
}

std::string RemovedAppsNotice::title() const {
  if (apps.empty()) {
    return {};
  }
  std::string first = displayText(apps.front().name);
  return apps.size() == 1 ? first : first + " and " + std::to_string(apps.size() - 1) + " more";
}

std::string RemovedAppsNotice::message() const {
  return title() + " left " + AppFormatting::bytes(leftoverBytes) + " behind";
}

void AppRemovalWatcher::start() { known_ = snapshot_(); }

std::vector<RemovedApp> AppRemovalWatcher::check() {
  Snapshot after = snapshot_();
  std::vector<RemovedApp> removed = removedApps(known_, after, isInstalledAnywhere_);
  // What still stands somewhere may be on its way out: it is asked after again.
  for (auto& [id, name] : known_) {
    if (!after.contains(id) && std::ranges::find(removed, id, &RemovedApp::bundleID) == removed.end()) {
      after.emplace(id, std::move(name));
    }
  }
  known_ = std::move(after);
  return removed;
}

std::vector<RemovedApp> AppRemovalWatcher::removedApps(
    const Snapshot& before, const Snapshot& after, const std::function<bool(const std::string&)>& isInstalledAnywhere) {
  std::vector<RemovedApp> removed;
  for (const auto& [bundleID, name] : before) {
    if (!after.contains(bundleID) && !bundleID.starts_with(systemPrefix) && !isInstalledAnywhere(bundleID)) {
      removed.push_back({.bundleID = bundleID, .name = name});
    }
  }
  std::ranges::sort(removed, {}, [](const RemovedApp& app) { return std::tie(app.name, app.bundleID); });
  return removed;
}

AppRemovalWatcher::Snapshot installedSnapshot(const AppRegistry& registry) {
  AppRemovalWatcher::Snapshot names;
  for (RegisteredApp& app : registry.apps()) {
    names.emplace(std::move(app.id), std::move(app.name));
  }
  return names;
}

}  // namespace lumenary
