#include <gtest/gtest.h>

#include <map>

#include "apps/AppBreakdown.h"
#include "apps/AppBusyMarkers.h"
#include "apps/LinuxAppLayout.h"
#include "support/AppHome.h"
#include "support/JudgedHome.h"

namespace lumenary {
namespace {

using Items = std::set<std::string>;

/// A home on Linux with these apps.
struct LinuxHome : AppHome {
  AppInventory inventoryOf(const std::vector<RegisteredApp>& apps) {
    scanner = linuxInventoryScanner(places(), apps, catalog);
    scanner.now = [] { return Date(); };
    return inventory();
  }

  KnownApps names;
  CleanupCatalog catalog{names};
};

RegisteredApp desktop(const std::string& id, const std::string& name, std::vector<std::string> dataNames = {}) {
  return {
      .path = "/usr/share/applications/" + id + ".desktop", .id = id, .name = name, .dataNames = std::move(dataNames)};
}

TEST(LinuxAppLayout, TiesFoldersToApps) {
  LinuxHome home;
  for (const char* folder :
       {".cache/org.gnome.Maps", ".cache/viewer", ".cache/Maker/Paint", ".config/Slack", ".config/org.gnome.Maps.Devel",
        ".config/autostart", ".config/unknown", ".local/share/org.gnome.Maps", ".local/share/applications",
        ".local/state/viewer", ".var/app/org.flat.App", ".var/app/org.gnome.Maps", ".var/app/org.flat.App.Devel",
        "snap/fire", "snap/org.flat.App", ".config/Firebird"}) {
    home.build({{std::string(folder) + "/file", 1}});
  }
  RegisteredApp flatpak = desktop("org.flat.App", "Flat");
  flatpak.origin = AppOrigin::flatpak;
  RegisteredApp snap = desktop("fire", "Firebird");
  snap.origin = AppOrigin::snap;
  const AppInventory inventory = home.inventoryOf(
      {desktop("org.gnome.Maps", "Maps"), desktop("eog", "Image Viewer", {"viewer"}), desktop("paint", "Paint"),
       desktop("slack", "Chat", {"slack"}), desktop("starter", "Autostart", {"applications", "run"}), flatpak, snap});
  EXPECT_EQ(home.itemsOf(inventory, "Maps"),
            (Items{"Cache @ .cache/org.gnome.Maps", "App data @ .config/org.gnome.Maps.Devel",
                   "App data @ .local/share/org.gnome.Maps"}));
  EXPECT_EQ(home.itemsOf(inventory, "Image Viewer"),
            (Items{"Cache @ .cache/viewer", "App data @ .local/state/viewer"}));
  EXPECT_EQ(home.itemsOf(inventory, "Paint"), (Items{"Cache @ .cache/Maker/Paint"}));
  EXPECT_EQ(home.itemsOf(inventory, "Chat"), (Items{"App data @ .config/Slack"}));
  EXPECT_EQ(home.itemsOf(inventory, "Autostart"), Items()) << "the desktop's own folders belong to no app";
  EXPECT_EQ(home.itemsOf(inventory, "Flat"), (Items{"Sandbox container @ .var/app/org.flat.App"}));
  EXPECT_EQ(home.itemsOf(inventory, "Firebird"), (Items{"Sandbox container @ snap/fire"}));
  EXPECT_TRUE(inventory.leftovers.empty());
}

TEST(LinuxAppLayout, GivesANameToTheSurerOfTwo) {
  RegisteredApp confined = desktop("org.flat.Paint", "Paint", {"paint"});
  confined.origin = AppOrigin::flatpak;
  const auto bundles = linuxBundles({desktop("a", "paint"), desktop("b", "B", {"Paint"}), confined,
                                     desktop("jetbrains-pycharm-4711", "PyCharm", {"jetbrains-pycharm"})});
  std::map<std::string, std::vector<std::string>> names;
  for (const FoundBundle& bundle : bundles) {
    names[bundle.bundleID] = bundle.folderNames;
  }
  EXPECT_EQ(names["a"], (std::vector<std::string>{"paint"})) << "both are what they are surest of";
  EXPECT_EQ(names["b"], std::vector<std::string>());
  EXPECT_EQ(names["org.flat.Paint"], std::vector<std::string>());
  EXPECT_EQ(names["jetbrains-pycharm-4711"], (std::vector<std::string>{"PyCharm", "jetbrains-pycharm"}));
}

TEST(LinuxAppLayout, CallsNothingSafeThatTheCatalogDoesNot) {
  LinuxHome home;
  std::vector<FolderByteTotals::Folder> known;
  for (const char* folder :
       {".cache/JetBrains/PyCharm2025.1", ".cache/plain", ".cache/rclone", ".config/plain/Cache",
        ".local/state/plain/logs", ".local/share/plain/1.2", ".local/share/plain/1.3", ".config/google-chrome/Default",
        ".config/google-chrome/Default/Service Worker/CacheStorage", ".var/app/org.flat.App/cache"}) {
    home.makeFolder(folder);
    known.push_back({home.path(folder), smallestBrokenDown});
  }
  RegisteredApp flatpak = desktop("org.flat.App", "Flat");
  flatpak.origin = AppOrigin::flatpak;
  home.scanner.knownSizes = FolderByteTotals(known);
  AppInventoryScanner scanner =
      linuxInventoryScanner(home.places(),
                            {desktop("pycharm", "PyCharm"), desktop("plain", "Plain"), desktop("rclone", "Rclone"),
                             desktop("google-chrome", "Chrome"), flatpak},
                            home.catalog);
  scanner.knownSizes = FolderByteTotals(known);
  scanner.now = [] { return Date(); };
  std::map<std::string, AppDataVerdict> verdicts;
  for (const InstalledApp& app : scanner.inventory(home.reader, home.files).apps) {
    for (const AppDataItem& item : app.items) {
      verdicts[item.url.path.substr(home.root().size() + 1)] = item.verdict;
    }
  }
  using enum AppDataVerdict;
  const std::map<std::string, AppDataVerdict> expected = {
      {".cache/JetBrains/PyCharm2025.1", caution},  // holds a history that undoes lost changes
      {".cache/plain", safe},
      {".cache/rclone", keep},  // uploads that wait
      {".config/plain/Cache", safe},
      {".local/state/plain/logs", caution},
      {".local/share/plain", keep},
      {".local/share/plain/1.2", caution},
      {".config/google-chrome/Default/Service Worker/CacheStorage", keep},  // of a profile, which only Chrome tends
      {".var/app/org.flat.App/cache", safe},
  };
  EXPECT_EQ(verdicts, expected);
}

TEST(LinuxAppLayout, TellsHowLargeAnAppIs) {
  LinuxHome home;
  home.build({{"opt/app/program", 10'000}, {"Downloads/Note.AppImage", 20'000}});
  RegisteredApp own = desktop("own", "Own");
  own.ownFolders = {home.path("opt/app")};
  RegisteredApp image{
      .path = home.path("Downloads/Note.AppImage"), .id = "Note", .name = "Note", .origin = AppOrigin::appImage};
  std::map<std::string, std::int64_t> sizes;
  for (const InstalledApp& app : home.inventoryOf({own, image, desktop("unknown", "Unknown")}).apps) {
    sizes[app.name] = app.appBytes;
  }
  EXPECT_EQ(sizes, (std::map<std::string, std::int64_t>{{"Own", home.allocatedBytes({"opt/app/program"})},
                                                        {"Note", home.allocatedBytes({"Downloads/Note.AppImage"})},
                                                        {"Unknown", 0}}));
}

TEST(LinuxAppLayout, TakesAFolderOnceThatTwoVariablesPointTo) {
  LinuxHome home;
  home.build({{".config/plain/file", 1}});
  Places places = home.places();
  places.dataHome = places.configHome;
  places.stateHome.clear();
  EXPECT_EQ(linuxLayout(places).locations.size(), linuxLayout(home.places()).locations.size() - 2);
}

TEST(AppBusyMarkers, KnowAnAppByItsProgram) {
  RegisteredApp maps = desktop("org.gnome.Maps", "Maps", {"gnome-maps"});
  maps.program = "/usr/bin/gnome-maps";
  RegisteredApp script = desktop("script", "Script");
  script.program = "/usr/bin/python3.11";
  RegisteredApp flatpak = desktop("org.flat.App", "Flat");
  flatpak.origin = AppOrigin::flatpak;
  RegisteredApp own = desktop("viewer", "Image Viewer", {"eog"});
  own.program = "/opt/eog/run";
  own.ownFolders = {"/opt/eog"};
  const auto rows = appBusyMarkers(std::vector{maps, script, flatpak, own});
  const std::vector<std::pair<std::string, std::set<std::string, std::less<>>>> cases = {
      {"/usr/bin/gnome-maps\n", {"Gnome-Maps cache", "Maps cache", "Org.Gnome.Maps cache"}},
      {"/usr/bin/python3.11 /usr/share/other/run.py\n", {}},
      {"bwrap --args 30 org.flat.App\n", {"Flat cache", "Org.Flat.App cache"}},
      {"/opt/eog/helper --type=gpu\n", {"Eog cache", "Image Viewer cache", "Viewer cache"}},
      {"/usr/bin/less notes-on-gnome-maps-x\n", {}},
  };
  for (const auto& [processes, titles] : cases) {
    EXPECT_EQ(busyTitles(processes, rows), titles) << processes;
  }
}

}  // namespace
}  // namespace lumenary
