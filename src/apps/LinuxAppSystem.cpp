#include <algorithm>
#include <cstdlib>
#include <optional>
#include <utility>

#include "apps/AppBusyMarkers.h"
#include "apps/AppInventoryScanner.h"
#include "apps/AppSystem.h"
#include "apps/BackgroundItemRemoval.h"
#include "apps/LinuxAppLayout.h"
#include "apps/LinuxBackgroundItemsController.h"
#include "apps/LinuxBackgroundItemsScanner.h"
#include "apps/LinuxLeftovers.h"
#include "apps/LinuxStartupPlaces.h"
#include "apps/SeenApps.h"
#include "base/Path.h"

namespace lumenary {
namespace {

/// Whether a program has something open at or below a path. Asked of few paths, and the list is dear: it is made at the
/// first question.
class OpenPaths {
 public:
  explicit OpenPaths(const SystemFacts& facts) : facts_(facts) {}

  bool operator()(const std::string& path) {
    if (!paths_) {
      paths_ = facts_.openPaths();
    }
    return std::ranges::any_of(*paths_, [&](const std::string& open) { return isSameOrInside(open, path); });
  }

 private:
  const SystemFacts& facts_;
  std::optional<std::vector<std::string>> paths_;
};

class LinuxAppSystem final : public AppSystem {
 public:
  LinuxAppSystem(const Platform& platform, const CleanupCatalog& catalog)
      : platform_(platform),
        catalog_(catalog),
        startup_(linuxStartupPlaces([](const char* name) { return std::getenv(name); }, platform.places)),
        removal_(*platform.reader, *platform.files, *platform.trash, platform.places.support),
        controller_(*platform.reader, *platform.files, *platform.tools, removal_, startup_) {}

  AppInventory inventory(Request request, const std::stop_token& stop) override {
    const std::vector<RegisteredApp> apps = platform_.apps->apps();
    SeenApps seen(*platform_.files, platform_.places.support);
    const Date now = platform_.now();
    AppInventoryScanner scanner = linuxInventoryScanner(platform_.places, apps, catalog_);
    scanner.layout.leftover = linuxLeftoverRule({.reader = *platform_.reader,
                                                 .registry = *platform_.apps,
                                                 .seen = seen.load(),
                                                 .now = now,
                                                 .isOpen = OpenPaths(*platform_.systemFacts),
                                                 .programFolders = programFolders()});
    scanner.includesContainers = request.includesContainers;
    scanner.knownSizes = std::move(request.knownSizes);
    scanner.runningBundleIDs = std::move(request.runningBundleIDs);
    scanner.isInstalledAnywhere = [&](std::string_view id) { return platform_.apps->isInstalled(id); };
    scanner.now = platform_.now;
    AppInventory inventory = scanner.inventory(*platform_.reader, *platform_.files, stop);
    seen.note(apps, now);
    return inventory;
  }

  std::vector<InUseMarker> busyMarkers() override { return appBusyMarkers(platform_.apps->apps()); }

  std::vector<BackgroundItem> backgroundItems(InstalledAppNames installedApps) override {
    return LinuxBackgroundItemsScanner(*platform_.reader, *platform_.files, *platform_.tools, startup_,
                                       std::move(installedApps))
        .scan();
  }
  bool canSwitch(const BackgroundItem& item) override { return controller_.canSwitch(item); }
  void setEnabled(const BackgroundItem& item, bool enabled) override { controller_.setEnabled(item, enabled); }
  std::expected<void, CleanupRefusal> remove(const BackgroundItem& item) override { return controller_.remove(item); }

 private:
  /// Those of the search path, and those that distributions and package managers have beside it.
  std::vector<std::string> programFolders() const {
    std::vector<std::string> folders = startup_.programFolders;
    for (const char* const folder : {"/usr/local/bin", "/usr/bin", "/bin", "/usr/games", "/usr/local/games",
                                     "/run/current-system/sw/bin", "/nix/var/nix/profiles/default/bin"}) {
      folders.emplace_back(folder);
    }
    for (const char* const folder : {"/.local/bin", "/bin", "/.nix-profile/bin", "/.cargo/bin", "/go/bin"}) {
      folders.push_back(platform_.places.home + folder);
    }
    return folders;
  }

  const Platform& platform_;
  const CleanupCatalog& catalog_;
  LinuxStartupPlaces startup_;
  BackgroundItemRemoval removal_;
  LinuxBackgroundItemsController controller_;
};

}  // namespace

std::unique_ptr<AppSystem> makeAppSystem(const Platform& platform, const CleanupCatalog& catalog) {
  return std::make_unique<LinuxAppSystem>(platform, catalog);
}

}  // namespace lumenary
