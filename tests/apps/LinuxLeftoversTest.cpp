#include <gtest/gtest.h>

#include <functional>

#include "apps/LinuxAppLayout.h"
#include "apps/LinuxLeftovers.h"
#include "support/AppMachine.h"
#include "support/JudgedHome.h"

namespace lumenary {
namespace {

const Date now = *parseISO8601("2026-01-01T00:00:00Z");
const Date longAgo = now - std::chrono::days(100);

/// A machine on which org.gone.App was seen a year ago, as an entry of the distribution.
struct LeftoverMachine : AppMachine {
  LeftoverMachine() {
    seen = {{.id = "org.gone.App",
             .name = "Gone",
             .program = path("usr/bin/gone"),
             .firstSeen = longAgo,
             .lastSeen = longAgo}};
  }

  /// Folders with something in them that was written long ago.
  void keepOld(std::initializer_list<const char*> folders) {
    for (const char* folder : folders) {
      build({{std::string(folder) + "/inner/file", 1}});
      setAllModified(folder, longAgo);
    }
  }

  /// The paths of what the inventory calls left behind, below the home.
  std::set<std::string> leftovers() {
    const LinuxAppRegistry installed = registry();
    const KnownApps names;
    const CleanupCatalog catalog(names);
    AppInventoryScanner scanner = linuxInventoryScanner(places(), installed.apps(), catalog);
    scanner.now = [] { return now; };
    scanner.layout.leftover = linuxLeftoverRule({.reader = reader,
                                                 .registry = installed,
                                                 .seen = seen,
                                                 .now = now,
                                                 .isOpen = isOpen,
                                                 .programFolders = {path("usr/bin"), path(".nix-profile/bin")}});
    std::set<std::string> paths;
    for (const LeftoverGroup& group : scanner.inventory(reader, files).leftovers) {
      for (const AppDataItem& item : group.items) {
        EXPECT_EQ(group.bundleID, lastPathComponent(item.url.path));
        EXPECT_LE(item.verdict, AppDataVerdict::caution);
        paths.insert(item.url.path.substr(root().size() + 1));
      }
    }
    return paths;
  }

  std::vector<SeenApp> seen;
  std::function<bool(const std::string&)> isOpen = [](const std::string&) { return false; };
};

TEST(LinuxLeftovers, AreToldWhereItIsCertain) {
  LeftoverMachine machine;
  machine.keepOld({".var/app/org.flat.Gone", "snap/fire", ".cache/org.gone.App", ".config/org.gone.App",
                   ".local/share/org.gone.App", ".local/state/org.gone.App"});
  machine.makeFolder("snap/fire/common");
  machine.seen.push_back(
      {.id = "fire", .name = "Fire", .origin = AppOrigin::snap, .firstSeen = longAgo, .lastSeen = longAgo});
  EXPECT_EQ(machine.leftovers(),
            (std::set<std::string>{".var/app/org.flat.Gone", "snap/fire", ".cache/org.gone.App", ".config/org.gone.App",
                                   ".local/share/org.gone.App", ".local/state/org.gone.App"}));
}

TEST(LinuxLeftovers, StayQuietInDoubt) {
  struct Trap {
    const char* name;
    std::function<void(LeftoverMachine&)> set;
  };
  const std::string config = ".config/org.gone.App";
  const std::vector<Trap> traps = {
      {"the old folder of a renamed app is a link to live data",
       [](LeftoverMachine& machine) {
         machine.keepOld({"elsewhere/data"});
         machine.makeFolder(".var/app");
         machine.makeFolder(".config");
         machine.build({{".config/org.gone.App", LinkTo{"../elsewhere/data"}},
                        {".var/app/org.flat.Gone", LinkTo{"../../elsewhere/data"}}});
       }},
      {"an app that changed its name goes on in the old folder, through a link",
       [](LeftoverMachine& machine) {
         machine.keepOld({".config/org.gone.App", ".var/app/org.flat.Old"});
         machine.build({{".config/org.new.App", LinkTo{"org.gone.App"}},
                        {".var/app/org.flat.New", LinkTo{"org.flat.Old/inner"}}});
       }},
      {"a folder that is made again at login",
       [](LeftoverMachine& machine) {
         machine.keepOld({".config/org.gone.App"});
         machine.setModified(".config/org.gone.App", now - std::chrono::hours(1));
       }},
      {"something deep in it was written in the last 90 days",
       [](LeftoverMachine& machine) {
         machine.keepOld({".config/org.gone.App"});
         machine.setModified(".config/org.gone.App/inner/file", now - std::chrono::days(89));
       }},
      {"a program has it open",
       [](LeftoverMachine& machine) {
         machine.keepOld({".config/org.gone.App", ".var/app/org.flat.Gone", "snap/fire"});
         machine.isOpen = [](const std::string&) { return true; };
       }},
      {"programs that no inventory ever saw: unpacked archives, Nix, pipx, commands",
       [](LeftoverMachine& machine) {
         machine.keepOld({".config/org.unknown.App", ".config/pipx", ".local/state/nix", ".config/htop",
                          ".local/share/com.maker.Tool", ".cache/com.maker.Tool"});
       }},
      {"a person's own folder where snaps have theirs",
       [](LeftoverMachine& machine) { machine.keepOld({"snap/photos", "snap/photos/common"}); }},
      {"a snap was tried, and the same program is there without it",
       [](LeftoverMachine& machine) {
         machine.keepOld({".config/helix"});
         machine.seen.push_back(
             {.id = "helix", .name = "Helix", .origin = AppOrigin::snap, .firstSeen = longAgo, .lastSeen = longAgo});
       }},
      {"the program stands in another place now",
       [](LeftoverMachine& machine) {
         machine.keepOld({".config/org.gone.App"});
         machine.write(".nix-profile/bin/gone");
       }},
      {"in a container the stores around it can't be seen",
       [](LeftoverMachine& machine) {
         machine.keepOld({".var/app/org.flat.Gone", ".config/org.gone.App"});
         machine.write("run/.containerenv");
         machine.roots.containerMarkers = {machine.path("run/.containerenv")};
       }},
      {"a file that names further installations can't be read",
       [](LeftoverMachine& machine) {
         machine.keepOld({".var/app/org.flat.Gone"});
         machine.makeFolder("etc/flatpak/unreadable");
       }},
      {"the settings of another desktop",
       [](LeftoverMachine& machine) {
         machine.keepOld({".config/xfce4", ".config/plasma-workspace", ".config/gtk-3.0"});
       }},
      {"the entry went, the program is still there",
       [](LeftoverMachine& machine) {
         machine.keepOld({".config/org.gone.App"});
         machine.write("usr/bin/gone");
       }},
      {"nobody knows which program it was",
       [](LeftoverMachine& machine) {
         machine.keepOld({".config/org.gone.App"});
         machine.seen[0].program.clear();
       }},
      {"an AppImage in Downloads is the app",
       [](LeftoverMachine& machine) {
         machine.keepOld({".config/org.gone.App", ".config/gone", ".var/app/org.flat.Gone"});
         machine.seen.push_back(machine.seen[0]);
         machine.seen.back().id = "gone";
         machine.build({{"Downloads/App-2.0-x86_64.AppImage", 1}, {"Downloads/Gone.AppImage", 1}});
       }},
      {"an identifier in another case is installed",
       [](LeftoverMachine& machine) {
         machine.keepOld({".config/org.gone.App", ".var/app/org.flat.gone"});
         machine.makeFlatpak("org.flat.Gone");
         machine.makeEntry("usr/share/applications/Org.Gone.App.desktop", "Name=G\nNoDisplay=true");
       }},
      {"installed in another installation of Flatpak",
       [](LeftoverMachine& machine) {
         machine.keepOld({".config/org.gone.App", ".var/app/org.flat.Extra"});
         machine.write("etc/flatpak/extra.conf", "[Installation \"x\"]\nPath=" + machine.path("mnt/extra"));
         machine.makeFlatpak("org.flat.Extra", "mnt/extra");
         machine.makeFlatpak("org.gone.App", "mnt/extra");
       }},
      {"an installation of Flatpak is on a drive that is away",
       [](LeftoverMachine& machine) {
         machine.keepOld({".config/org.gone.App", ".var/app/org.flat.Extra", "snap/fire"});
         machine.write("etc/flatpak/extra.conf", "Path=" + machine.path("mnt/away"));
       }},
      {"what Flatpak apps run on was started by hand",
       [](LeftoverMachine& machine) {
         machine.keepOld({".var/app/org.freedesktop.Sdk"});
         machine.makeFolder("var/lib/flatpak/runtime/org.freedesktop.Sdk/x86_64/24.08/active");
       }},
      {"folders that people made there themselves",
       [](LeftoverMachine& machine) {
         machine.keepOld({".var/app/notes", ".var/app/my.old.stuff copy", "snap/4711", "snap/Backup"});
       }},
      {"seen for the first time right now",
       [](LeftoverMachine& machine) {
         machine.keepOld({".config/org.gone.App"});
         machine.seen[0].lastSeen = now;
       }},
      {"a file and an empty folder of that name",
       [](LeftoverMachine& machine) {
         machine.build({{".config/org.gone.App", 1, longAgo}, {".cache/org.gone.App/"}});
         machine.setModified(".cache/org.gone.App", longAgo);
       }},
  };
  for (const Trap& trap : traps) {
    LeftoverMachine machine;
    trap.set(machine);
    EXPECT_EQ(machine.leftovers(), std::set<std::string>()) << trap.name;
  }
}

}  // namespace
}  // namespace lumenary
