#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "apps/AppDataKind.h"
#include "apps/KnownAppData.h"
#include "platform/AppRegistry.h"

/// Where apps keep things on a system, as a value: one algorithm reads them all.
namespace lumenary {

/// A folder in which apps have a folder or file each.
struct AppDataLocation {
  AppDataKind kind = AppDataKind::caches;
  std::string folder;
  std::string suffix{};                            ///< cut from the names in it
  bool looksIntoVendors = false;                   ///< a maker may have one folder with one for each app
  std::optional<AppOrigin> onlyFor{};              ///< holds data of such apps alone, under their exact identifiers
  std::set<std::string, std::less<>> ownerless{};  ///< names that belong to no app, folded
  AppDataVerdict leastVerdict = AppDataVerdict::safe;
  std::vector<AppDataPart> parts{};  ///< known of every folder here
};

/// The identifier whose leftovers an untied entry of a location is; none where it is none. `path` is the entry,
/// `name` its name without the location's suffix.
using LeftoverRule =
    std::function<std::optional<std::string>(const AppDataLocation&, const std::string& name, const std::string& path)>;

/// What must not be called safe: the least verdict for a path and, where that is above safe, the words for it.
struct LeastVerdict {
  AppDataVerdict verdict = AppDataVerdict::safe;
  std::string explanation{};
};

struct AppLayout {
  std::vector<AppDataLocation> locations;
  std::span<const KnownAppData> knownApps = KnownAppData::catalog();
  AppDataVerdict oldVersionVerdict = AppDataVerdict::safe;
  LeftoverRule leftover{};                                  ///< by the look of the name where there is none
  std::function<LeastVerdict(const std::string&)> least{};  ///< asked of what seems safe
};

/// Bundles in application folders, and ~/Library with a folder for each kind of data.
AppLayout macLayout(const std::string& home);

}  // namespace lumenary
