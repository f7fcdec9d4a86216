#include "apps/AppInventoryScanner.h"

#include <algorithm>
#include <map>

#include "apps/AppBreakdown.h"
#include "apps/AppIdentifiers.h"
#include "apps/VendorFolders.h"
#include "base/CheckedSum.h"
#include "base/Path.h"
#include "base/StableSort.h"
#include "base/Unicode.h"

namespace lumenary {
namespace {

/// Which app a folder belongs to by its name.
class AppIndex {
 public:
  explicit AppIndex(const std::vector<FoundBundle>& bundles) {
    for (std::size_t index = 0; index < bundles.size(); ++index) {
      const FoundBundle& found = bundles[index];
      const std::string id = caseFolded(found.bundleID);
      ids_[id] = index;
      idsOfOrigin_[{found.origin, id}] = index;
      for (const std::string& name : found.folderNames) {
        names_[caseFolded(name)] = index;
      }
    }
  }

  std::optional<std::size_t> owner(const AppDataLocation& location, const std::string& folded) const {
    if (location.onlyFor) {
      return valueIn(idsOfOrigin_, std::pair(*location.onlyFor, folded));
    }
    for (const std::string& candidate : candidateIDs(folded)) {
      if (const auto index = valueIn(ids_, candidate)) {
        return index;
      }
    }
    return valueIn(names_, folded);
  }

 private:
  template <class Map>
  static std::optional<std::size_t> valueIn(const Map& map, const Map::key_type& key) {
    const auto found = map.find(key);
    return found == map.end() ? std::nullopt : std::optional(found->second);
  }

  std::map<std::string, std::size_t> ids_;
  std::map<std::pair<AppOrigin, std::string>, std::size_t> idsOfOrigin_;
  std::map<std::string, std::size_t> names_;
};

/// One run over the disk.
class InventoryRun {
 public:
  InventoryRun(const AppInventoryScanner& inputs, const FileReader& reader, DurableFiles& files, std::stop_token stop)
      : inputs_(inputs),
        folders_(reader, inputs.knownSizes, std::move(stop)),
        bundles_(inputs.bundles ? *inputs.bundles : installedBundles(folders_, files, inputs.applicationFolders)),
        index_(bundles_),
        vendors_(bundles_),
        itemsOf_(bundles_.size()) {}

  AppInventory run() {
    for (const AppDataLocation& location : inputs_.layout.locations) {
      if (location.kind != AppDataKind::container || inputs_.includesContainers) {
        lookThrough(location);
      }
    }
    lookAtHomeFolders();
    return finished();
  }

 private:
  void lookThrough(const AppDataLocation& location);
  void lookAtHomeFolders();
  AppInventory finished();

  bool addFromVendor(const AppDataLocation& location, const std::string& path, const std::string& name);
  void addLeftover(const AppDataLocation& location, const std::string& path, const std::string& stripped);
  void add(std::size_t app, const AppDataLocation& location, std::vector<AppDataItem> items);
  void raise(AppDataItem& item, const AppDataLocation& location) const;
  std::vector<AppDataItem> brokenDown(std::size_t app, const AppDataLocation& location, const std::string& path);
  std::optional<std::string> leftoverByName(const std::string& stripped) const;
  const KnownAppData* known(std::size_t app) const {
    return KnownAppData::forApp(bundles_[app].bundleID, inputs_.layout.knownApps);
  }

  const AppInventoryScanner& inputs_;
  AppFolders folders_;
  const std::vector<FoundBundle> bundles_;
  const AppIndex index_;
  const VendorFolders vendors_;
  std::vector<std::vector<AppDataItem>> itemsOf_;  ///< of each bundle
  std::map<std::string, LeftoverGroup> leftovers_;
};

void InventoryRun::lookThrough(const AppDataLocation& location) {
  for (const AppFolders::Entry& entry : folders_.entriesOrNone(location.folder, LinkPolicy::follow)) {
    if (folders_.isStopped()) {
      return;
    }
    const std::string& name = entry.name;
    std::string stripped = name;
    if (!location.suffix.empty() && stripped.ends_with(location.suffix)) {
      stripped.resize(stripped.size() - location.suffix.size());
    }
    const std::string folded = caseFolded(stripped);
    if (name.starts_with('.') || location.ownerless.contains(folded)) {
      continue;
    }
    const std::string path = appendingPathComponent(location.folder, name);
    if (const auto app = index_.owner(location, folded)) {
      const bool hasParts = location.kind == AppDataKind::support || location.kind == AppDataKind::container;
      add(*app, location,
          hasParts ? brokenDown(*app, location, path) : std::vector{wholeItem(folders_, path, location.kind)});
    } else if (!location.looksIntoVendors || entry.kind != FileKind::folder || !addFromVendor(location, path, name)) {
      addLeftover(location, path, stripped);
    }
  }
}

bool InventoryRun::addFromVendor(const AppDataLocation& location, const std::string& path, const std::string& name) {
  const auto matches = vendors_.matches(folders_, path, name);
  for (const auto& [app, inner] : matches) {
    add(app, location,
        location.kind == AppDataKind::support ? brokenDown(app, location, inner)
                                              : std::vector{wholeItem(folders_, inner, location.kind)});
  }
  return !matches.empty();
}

std::vector<AppDataItem> InventoryRun::brokenDown(std::size_t app, const AppDataLocation& location,
                                                  const std::string& path) {
  const KnownAppData* const row = known(app);
  std::vector<AppDataPart> knownParts = row == nullptr ? std::vector<AppDataPart>() : row->parts;
  knownParts.insert(knownParts.end(), location.parts.begin(), location.parts.end());
  return parts(folders_, path,
               {.kind = location.kind,
                .known = knownParts,
                .minimumBytes = smallestBrokenDown,
                .oldVersionVerdict = inputs_.layout.oldVersionVerdict});
}

void InventoryRun::add(std::size_t app, const AppDataLocation& location, std::vector<AppDataItem> items) {
  for (AppDataItem& item : items) {
    raise(item, location);
    itemsOf_[app].push_back(std::move(item));
  }
}

void InventoryRun::raise(AppDataItem& item, const AppDataLocation& location) const {
  item.verdict = std::max(item.verdict, location.leastVerdict);
  if (item.verdict == AppDataVerdict::keep || !inputs_.layout.least) {
    return;
  }
  if (LeastVerdict least = inputs_.layout.least(item.url.path); least.verdict > item.verdict) {
    item.verdict = least.verdict;
    item.explanation = std::move(least.explanation);
  }
}

void InventoryRun::addLeftover(const AppDataLocation& location, const std::string& path, const std::string& stripped) {
  const LeftoverRule& rule = inputs_.layout.leftover;
  const auto key = rule ? rule(location, stripped, path) : leftoverByName(stripped);
  if (!key) {
    return;
  }
  AppDataItem item = wholeItem(folders_, path, location.kind);
  item.verdict = std::min(item.verdict, AppDataVerdict::caution);
  if (isInsideAppData(location.kind)) {
    item.explanation = "Data the removed app left behind. Check it first if you might install the app again.";
  }
  raise(item, location);
  LeftoverGroup& group = leftovers_[*key];
  group.bundleID = *key;
  group.items.push_back(std::move(item));
}

std::optional<std::string> InventoryRun::leftoverByName(const std::string& stripped) const {
  const std::string folded = caseFolded(stripped);
  if (!inputs_.isInstalledAnywhere || !looksLikeBundleID(stripped) || folded.starts_with("com.apple.") ||
      folded == caseFolded(inputs_.ownBundleID)) {
    return std::nullopt;
  }
  const bool isInstalled = std::ranges::any_of(
      candidateIDs(stripped), [&](const std::string& candidate) { return inputs_.isInstalledAnywhere(candidate); });
  return isInstalled ? std::nullopt : std::optional(stripped);
}

void InventoryRun::lookAtHomeFolders() {
  std::set<std::string> taken;  // two packages of one app share their folder
  for (std::size_t app = 0; app < bundles_.size() && !folders_.isStopped(); ++app) {
    const KnownAppData* const row = known(app);
    const AppOrigin origin = bundles_[app].origin;
    if (row == nullptr || origin == AppOrigin::flatpak || origin == AppOrigin::snap) {
      continue;  // those have a home folder of their own
    }
    for (const auto& [name, knownParts] : row->homeFolders) {
      const std::string path = appendingPathComponent(inputs_.home, name);
      if (folders_.kindAt(path) && taken.insert(path).second) {
        const AppDataLocation location{.kind = AppDataKind::homeFolder, .folder = inputs_.home};
        add(app, location,
            parts(folders_, path,
                  {.kind = AppDataKind::homeFolder,
                   .known = knownParts,
                   .oldVersionVerdict = inputs_.layout.oldVersionVerdict}));
      }
    }
  }
}

std::vector<AppDataItem> largestFirst(std::vector<AppDataItem> items) {
  std::erase_if(items, [](const AppDataItem& item) { return item.bytes < 1; });
  return stableSorted(std::move(items), [](const AppDataItem& item) { return -item.bytes; });
}

AppInventory InventoryRun::finished() {
  AppInventory inventory;
  inventory.includesContainers = inputs_.includesContainers;
  for (std::size_t app = 0; app < bundles_.size(); ++app) {
    const FoundBundle& found = bundles_[app];
    std::int64_t appBytes = 0;
    for (const std::string& path : found.ownPaths) {
      appBytes = checkedSum(appBytes, folders_.bytesAt(path));
    }
    inventory.apps.push_back({.url = found.url,
                              .name = found.name,
                              .bundleID = found.bundleID,
                              .version = found.version,
                              .appBytes = appBytes,
                              .isRunning = inputs_.runningBundleIDs.contains(found.bundleID),
                              .items = largestFirst(std::move(itemsOf_[app]))});
  }
  for (auto& [key, group] : leftovers_) {
    group.items = largestFirst(std::move(group.items));
    if (!group.items.empty()) {
      inventory.leftovers.push_back(std::move(group));
    }
  }
  inventory.apps = stableSorted(std::move(inventory.apps), [](const InstalledApp& app) { return -app.totalBytes(); });
  inventory.leftovers = stableSorted(std::move(inventory.leftovers),
                                     [](const LeftoverGroup& group) { return -totalBytesOf(group.items); });
  inventory.scannedAt = inputs_.now();
  return inventory;
}

}  // namespace

AppInventory AppInventoryScanner::inventory(const FileReader& reader, DurableFiles& files, std::stop_token stop) const {
  return InventoryRun(*this, reader, files, std::move(stop)).run();
}

}  // namespace lumenary
