#include "apps/LinuxAppLayout.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <set>
#include <string_view>
#include <utility>

#include "base/Path.h"
#include "base/Text.h"
#include "base/Unicode.h"
#include "cleanup/LinuxCatalog.h"

namespace lumenary {
namespace {

using Names = std::set<std::string, std::less<>>;

/// Of the desktop, the session and the system: whoever is called so as well doesn't own them.
const Names ownerlessCaches = {
    "at-spi",  "dconf",    "event-sound-cache.tdb", "flatpak", "fontconfig", "gvfs",     "ibus",
    "keyring", "lumenary", "mesa_shader_cache",     "nvidia",  "obexd",      "sessions", "thumbnails",
    "tracker", "tracker3"};
const Names ownerlessSettings = {
    "autostart", "dconf",   "environment.d",  "fontconfig", "gtk-2.0",          "gtk-3.0",
    "gtk-4.0",   "ibus",    "kdedefaults",    "lumenary",   "mimeapps.list",    "menus",
    "pulse",     "systemd", "user-dirs.dirs", "xsettingsd", "user-dirs.locale", "xdg-desktop-portal"};
const Names ownerlessData = {"applications",
                             "backgrounds",
                             "baloo",
                             "color-schemes",
                             "dbus-1",
                             "desktop-directories",
                             "flatpak",
                             "fonts",
                             "gvfs-metadata",
                             "icc",
                             "icons",
                             "keyrings",
                             "kwalletd",
                             "locale",
                             "lumenary",
                             "man",
                             "mime",
                             "recently-used.xbel",
                             "sounds",
                             "systemd",
                             "themes",
                             "trash",
                             "tracker",
                             "tracker3",
                             "user-places.xbel",
                             "xdg-desktop-portal"};
const Names ownerlessState = {"lumenary", "nix", "pipewire", "systemd", "wireplumber"};

/// As names of programs they tell nothing.
constexpr auto generalNames = std::to_array<std::string_view>(
    {"app", "apprun", "client", "desktop", "launch", "launcher", "main", "run", "start", "startup", "wrapper"});

bool isConfined(AppOrigin origin) { return origin == AppOrigin::flatpak || origin == AppOrigin::snap; }

const KnownAppData* rowFor(const RegisteredApp& app) {
  const KnownAppData* row = KnownAppData::forApp(app.id, KnownAppData::linuxCatalog());
  // Some put a number of their own behind the identifier of their entry; their windows go by the plain one.
  for (std::size_t index = 0; row == nullptr && index < app.dataNames.size(); ++index) {
    row = KnownAppData::forApp(app.dataNames[index], KnownAppData::linuxCatalog());
  }
  return row;
}

/// The names of the folders that an app may have, the surest first.
std::vector<std::string> namesOf(const RegisteredApp& app) {
  if (isConfined(app.origin)) {
    return {};  // they keep everything in a container
  }
  const KnownAppData* const row = rowFor(app);
  std::vector<std::string> names = row == nullptr ? std::vector<std::string>() : row->dataNames;
  names.insert(names.end(), app.dataNames.begin(), app.dataNames.end());
  names.push_back(app.name);
  std::erase_if(names, [](const std::string& name) {
    return name.size() < 2 || std::ranges::find(generalNames, caseFolded(name)) != generalNames.end();
  });
  return names;
}

/// Beside settings and data "logs" may be what a person wrote and read: chat programs keep conversations so.
bool mayBeHistory(const std::string& path, const Places& places) {
  const std::string name = loweredASCII(lastPathComponent(path));
  return (name == "logs" || name == "log") &&
         (isSameOrInside(path, places.configHome) || isSameOrInside(path, places.dataHome));
}

/// No safer than the catalog says, and nothing that the mover would refuse.
LeastVerdict leastOf(const std::string& path, const std::string& home, const CleanupCatalog& catalog) {
  const CleanupCatalog::Rule* const rule = catalog.match(path, home);
  const LinuxMatch onLinux = matchLinuxRows(path, home);
  LeastVerdict least;
  if (mustStayOnLinux(path, home) || (rule != nullptr && rule->verdict == CleanupCatalog::Verdict::keep)) {
    least.verdict = AppDataVerdict::keep;
  } else if (onLinux.holdsReview || (rule != nullptr && rule->verdict == CleanupCatalog::Verdict::review)) {
    least.verdict = AppDataVerdict::caution;
  }
  least.explanation =
      rule != nullptr ? rule->what + " " + rule->ifRemoved : "Something in it isn't to be removed without a look.";
  return least;
}

}  // namespace

AppLayout linuxLayout(const Places& places) {
  using enum AppDataKind;
  AppLayout layout;
  layout.knownApps = KnownAppData::linuxCatalog();
  // Settings of an older version are often what a newer one begins with.
  layout.oldVersionVerdict = AppDataVerdict::caution;
  layout.leftover = [](const AppDataLocation&, const std::string&, const std::string&) {
    return std::optional<std::string>();
  };
  std::vector<AppDataLocation> locations = {
      {.kind = caches, .folder = places.cacheHome, .looksIntoVendors = true, .ownerless = ownerlessCaches},
      {.kind = support, .folder = places.configHome, .looksIntoVendors = true, .ownerless = ownerlessSettings},
      {.kind = support, .folder = places.dataHome, .looksIntoVendors = true, .ownerless = ownerlessData},
      {.kind = support,
       .folder = places.stateHome,
       .ownerless = ownerlessState,
       .leastVerdict = AppDataVerdict::caution},
  };
  if (!places.home.empty()) {
    locations.push_back({.kind = container, .folder = places.home + "/.var/app", .onlyFor = AppOrigin::flatpak});
    locations.push_back({.kind = container,
                         .folder = places.home + "/snap",
                         .onlyFor = AppOrigin::snap,
                         .parts = {{"common/.cache", "Temporary cache",
                                    "Rebuilt automatically. The app may be a little slower the first time it starts.",
                                    AppDataVerdict::safe}}});
  }
  for (AppDataLocation& location : locations) {
    // Two variables may point to one folder.
    const bool isTaken = std::ranges::any_of(
        layout.locations, [&](const AppDataLocation& other) { return other.folder == location.folder; });
    if (!location.folder.empty() && !isTaken) {
      layout.locations.push_back(std::move(location));
    }
  }
  return layout;
}

std::vector<FoundBundle> linuxBundles(const std::vector<RegisteredApp>& apps) {
  std::vector<FoundBundle> bundles;
  std::vector<std::vector<std::string>> names;
  std::size_t most = 0;
  for (const RegisteredApp& app : apps) {
    names.push_back(namesOf(app));
    most = std::max(most, names.back().size());
    bundles.push_back({.url = {.path = app.path, .isFolder = isConfined(app.origin)},
                       .name = app.name,
                       .bundleID = app.id,
                       .version = app.version,
                       .vendorNames = names.back(),
                       .ownPaths = app.origin == AppOrigin::appImage ? std::vector{app.path} : app.ownFolders,
                       .origin = app.origin});
  }
  Names taken;
  for (std::size_t rank = 0; rank < most; ++rank) {
    for (std::size_t app = 0; app < bundles.size(); ++app) {
      if (rank < names[app].size() && taken.insert(caseFolded(names[app][rank])).second) {
        bundles[app].folderNames.push_back(names[app][rank]);
      }
    }
  }
  // Of two with one identifier the last one counts, and those of the distribution stand first.
  std::ranges::reverse(bundles);
  return bundles;
}

AppInventoryScanner linuxInventoryScanner(const Places& places, const std::vector<RegisteredApp>& apps,
                                          const CleanupCatalog& catalog) {
  AppInventoryScanner scanner{.home = places.home, .layout = linuxLayout(places), .bundles = linuxBundles(apps)};
  scanner.layout.least = [&catalog, places](const std::string& path) {
    LeastVerdict least = leastOf(path, places.home, catalog);
    if (least.verdict == AppDataVerdict::safe && mayBeHistory(path, places)) {
      least = {.verdict = AppDataVerdict::caution,
               .explanation = "Logs. Some programs keep conversations here: look before they go."};
    }
    return least;
  };
  return scanner;
}

}  // namespace lumenary
