#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "platform/linux/ExecLine.h"
#include "platform/linux/LinuxAppImages.h"
#include "platform/linux/LinuxAppRegistry.h"
#include "support/AppMachine.h"

namespace lumenary {
namespace {

using Words = std::vector<std::string>;

TEST(ExecLine, IsReadByTheRules) {
  const std::vector<std::pair<std::string, std::optional<Words>>> cases = {
      {"maps", {{"maps"}}},
      {"maps  --new %U %i --x=%f 100%% a%cb", {{"maps", "--new", "--x=", "100%", "ab"}}},
      {R"("/opt/My App/run" "a \\"b\\" \\$c" "")", {{"/opt/My App/run", R"(a "b" $c)", ""}}},
      {R"(sh -c "x \\\\ y")", {{"sh", "-c", R"(x \ y)"}}},
      {R"(a\sb)", {{"a", "b"}}},
      {"a \"open", {}},
      {"", {}},
      {"%U", {}},
      {"a%", {{"a%"}}},
      {std::string(100'000, 'a'), {}},
  };
  for (const auto& [value, words] : cases) {
    EXPECT_EQ(parseExecLine(value), words) << value.substr(0, 100);
  }
}

TEST(ExecLine, WrappersAreSeenThrough) {
  const std::vector<std::pair<std::string, StartedProgram>> cases = {
      {"/usr/bin/maps %U", {"/usr/bin/maps", "", "", false}},
      {"env -u X A=b --chdir /tmp C=d/e maps", {"maps", "", "", false}},
      {"/usr/bin/env nohup env prime-run game", {"game", "", "", false}},
      {"env A=b", {}},
      {"flatpak run --branch=stable --command=fire org.mozilla.firefox %u", {"fire", "org.mozilla.firefox", "", false}},
      {"flatpak run", {}},
      {"flatpak update", {"flatpak", "", "", false}},
      {"snap run firefox.main", {"", "", "firefox", false}},
      {"env H=/x /snap/bin/firefox.main %u", {"/snap/bin/firefox.main", "", "firefox", false}},
      {"/opt/google/chrome/google-chrome --app-id=abc", {"/opt/google/chrome/google-chrome", "", "", true}},
      {"steam steam://rungameid/1", {"steam", "", "", true}},
  };
  for (const auto& [line, program] : cases) {
    EXPECT_EQ(startedProgram(parseExecLine(line).value_or(Words())), program) << line;
  }
  EXPECT_TRUE(isInterpreter("python3.11"));
  EXPECT_FALSE(isInterpreter("pythonista"));
}

TEST(AppImages, AreToldByTheirNames) {
  const std::vector<std::pair<std::string, AppImageName>> cases = {
      {"Cursor-0.42.3-x86_64.AppImage", {"Cursor", "0.42.3"}},
      {"My_App_v1.2-beta_amd64.appimage", {"My_App", "1.2"}},
      {"Obsidian.AppImage", {"Obsidian", {}}},
      {"nvim-linux-x86_64.AppImage", {"nvim", {}}},
      {"7-Zip.AppImage", {"7-Zip", {}}},
      {"x86_64.AppImage", {"x86_64", {}}},
  };
  for (const auto& [file, name] : cases) {
    EXPECT_TRUE(isAppImage(file));
    EXPECT_EQ(appImageName(file), name) << file;
  }
  EXPECT_FALSE(isAppImage(".AppImage"));
}

/// The apps by id, with their paths below the machine's root cut.
std::map<std::string, RegisteredApp> appsOf(AppMachine& machine) {
  std::map<std::string, RegisteredApp> apps;
  const auto cut = [&](std::string& path) { path.erase(0, path.empty() ? 0 : machine.root().size() + 1); };
  for (RegisteredApp app : machine.registry().apps()) {
    cut(app.path);
    cut(app.program);
    std::ranges::for_each(app.ownFolders, cut);
    EXPECT_TRUE(apps.emplace(app.id, app).second) << app.id;
  }
  return apps;
}

TEST(LinuxAppRegistry, ReadsDesktopEntries) {
  AppMachine machine;
  machine.build({{"opt/maker/chrome/run", 1},
                 {"usr/bin/chrome", LinkTo{"../../opt/maker/chrome/run"}},
                 {"usr/share/code/bin/code", 1},
                 {"usr/lib/office/program/soffice", 1},
                 {"usr/bin/python3.11", 1},
                 {"usr/bin/python3", LinkTo{"python3.11"}}});
  machine.makeEntry("usr/share/applications/chrome.desktop", "Name=Chrome\nExec=chrome %U\nStartupWMClass=Chrome-x");
  machine.makeEntry("usr/share/applications/web.desktop", "Name=Page\nExec=chrome --app-id=abc\nStartupWMClass=crx");
  machine.makeEntry("usr/share/applications/kde4/code.desktop",
                    "Name=Code\nTryExec=" + machine.path("usr/share/code/bin/code") + "\nExec=env X=y \"" +
                        machine.path("usr/share/code/bin/code") + "\"");
  machine.makeEntry("usr/share/applications/script.desktop", "Name=S\\x1b\nExec=python3 /usr/share/script/run.py");
  for (const char* name : {"writer", "calc"}) {
    machine.makeEntry(std::string("usr/share/applications/") + name + ".desktop",
                      "Exec=" + machine.path("usr/lib/office/program/soffice"));
  }
  const std::map<std::string, RegisteredApp> expected = {
      {"chrome",
       {.path = "usr/share/applications/chrome.desktop",
        .id = "chrome",
        .name = "Chrome",
        .program = "opt/maker/chrome/run",
        .ownFolders = {"opt/maker/chrome"},
        .dataNames = {"chrome", "run", "Chrome-x"}}},
      {"web", {.path = "usr/share/applications/web.desktop", .id = "web", .name = "Page"}},
      {"kde4-code",
       {.path = "usr/share/applications/kde4/code.desktop",
        .id = "kde4-code",
        .name = "Code",
        .program = "usr/share/code/bin/code",
        .ownFolders = {"usr/share/code"},
        .dataNames = {"code"}}},
      {"script",
       {.path = "usr/share/applications/script.desktop",
        .id = "script",
        .name = "S\\x1b",
        .program = "usr/bin/python3.11"}},
      {"writer",
       {.path = "usr/share/applications/writer.desktop",
        .id = "writer",
        .name = "writer",
        .program = "usr/lib/office/program/soffice",
        .dataNames = {"soffice"}}},
      {"calc",
       {.path = "usr/share/applications/calc.desktop",
        .id = "calc",
        .name = "calc",
        .program = "usr/lib/office/program/soffice",
        .dataNames = {"soffice"}}},
  };
  EXPECT_EQ(appsOf(machine), expected);
}

TEST(LinuxAppRegistry, LeavesOutWhatNoMenuShows) {
  AppMachine machine;
  const std::string folder = "usr/share/applications/";
  machine.makeEntry(folder + "helper.desktop", "Name=H\nExec=h\nNoDisplay=true");
  machine.makeEntry(folder + "htop.desktop", "Name=H\nExec=h\nTerminal=true");
  machine.makeEntry(folder + "gone.desktop", "Name=G\nExec=g\nTryExec=not-there");
  machine.makeEntry(folder + "taken-out.desktop", "Name=T\nExec=t");
  machine.makeEntry(".local/share/applications/taken-out.desktop", "Hidden=true");
  machine.write(folder + "link.desktop", "[Desktop Entry]\nType=Link\nURL=x");
  machine.write(folder + "huge.desktop", "[Desktop Entry]\nType=Application\nName=" + std::string(600'000, 'x'));
  machine.write(folder + "bytes.desktop", std::string("\xff\xfe\0[\0D\0e", 8));
  machine.build({{folder + "self.desktop", LinkTo{"self.desktop"}},
                 {folder + "loop", LinkTo{"."}},
                 {folder + "dead.desktop", LinkTo{"nowhere"}},
                 {folder + "folder.desktop/"}});
  machine.makeEntry(folder + "odd.desktop", "Name=a\xff\x1b[1m\nExec=\"open");
  const auto apps = appsOf(machine);
  ASSERT_EQ(apps.size(), 1U);
  EXPECT_EQ(apps.begin()->second,
            (RegisteredApp{.path = folder + "odd.desktop", .id = "odd", .name = "a\uFFFD\uFFFD[1m"}));
}

TEST(LinuxAppRegistry, FindsFlatpaksSnapsAndAppImages) {
  AppMachine machine;
  machine.makeFlatpak("org.flat.App");
  machine.makeEntry("var/lib/flatpak/exports/share/applications/org.flat.App.desktop",
                    "Name=Again\nExec=flatpak run org.flat.App\nX-Flatpak=org.flat.App");
  machine.makeFolder("var/lib/flatpak/app/org.flat.Remains/x86_64");
  machine.write("etc/flatpak/extra.conf",
                "[Installation \"extra\"]\nPath=" + machine.path("mnt/extra/") + "\nPath=x\n");
  machine.makeFlatpak("org.flat.Extra", "mnt/extra");
  machine.makeEntry("var/lib/snapd/desktop/fire_other.desktop", "Name=Other\nExec=/snap/bin/fire.other");
  machine.makeEntry("var/lib/snapd/desktop/fire_fire.desktop", "Name=Fire\nExec=env X=y /snap/bin/fire %u");
  machine.makeEntry("var/lib/snapd/desktop/gone_gone.desktop", "Name=Gone\nExec=/snap/bin/gone");
  machine.write("snap-mounts/fire/12/meta/snap.yaml", "name: fire\nversion: '1.5'\napps:\n  version: 2");
  machine.build({{"snap-mounts/fire/current", LinkTo{"12"}},
                 {"var/lib/snapd/snaps/fire_12.snap", 1},
                 {"var/lib/snapd/snaps/firefly_1.snap", 1},
                 {"Downloads/Note-1.2-x86_64.AppImage", 1},
                 {"Downloads/picture.png", 1},
                 {"Downloads/Folder.AppImage/"},
                 {"Applications/Started-3.0.AppImage", 1}});
  machine.makeEntry(".local/share/applications/started.desktop",
                    "Name=Started\nExec=\"" + machine.path("Applications/Started-3.0.AppImage") + "\" %U");
  const std::map<std::string, RegisteredApp> expected = {
      {"org.flat.App",
       {.path = "var/lib/flatpak/app/org.flat.App",
        .id = "org.flat.App",
        .name = "Flat org.flat.App",
        .origin = AppOrigin::flatpak,
        .program = "var/lib/flatpak/app/org.flat.App/x86_64/stable/4711/files/bin/run-it",
        .ownFolders = {"var/lib/flatpak/app/org.flat.App"}}},
      {"org.flat.Extra",
       {.path = "mnt/extra/app/org.flat.Extra",
        .id = "org.flat.Extra",
        .name = "Flat org.flat.Extra",
        .origin = AppOrigin::flatpak,
        .program = "mnt/extra/app/org.flat.Extra/x86_64/stable/4711/files/bin/run-it",
        .ownFolders = {"mnt/extra/app/org.flat.Extra"}}},
      {"fire",
       {.path = "snap-mounts/fire",
        .id = "fire",
        .name = "Fire",
        .version = "1.5",
        .origin = AppOrigin::snap,
        .ownFolders = {"var/lib/snapd/snaps/fire_12.snap"}}},
      {"Note",
       {.path = "Downloads/Note-1.2-x86_64.AppImage",
        .id = "Note",
        .name = "Note",
        .version = "1.2",
        .origin = AppOrigin::appImage,
        .program = "Downloads/Note-1.2-x86_64.AppImage"}},
      {"started",
       {.path = "Applications/Started-3.0.AppImage",
        .id = "started",
        .name = "Started",
        .version = "3.0",
        .origin = AppOrigin::appImage,
        .program = "Applications/Started-3.0.AppImage",
        .dataNames = {"Started"}}},
  };
  EXPECT_EQ(appsOf(machine), expected);
}

TEST(LinuxAppRegistry, KnowsWhatIsInstalledAnywhere) {
  AppMachine machine;
  machine.makeFlatpak("org.flat.App", ".local/share/flatpak");
  machine.makeFolder("var/lib/flatpak/app/org.flat.Gone");
  machine.makeEntry("usr/share/applications/helper.desktop", "NoDisplay=true");
  machine.build({{"usr/share/applications/dead.desktop", LinkTo{"nowhere"}},
                 {"snap-mounts/fire/"},
                 {"Downloads/Cursor-1.2.AppImage", 1}});
  const LinuxAppRegistry registry = machine.registry();
  for (const char* id : {"org.flat.App", "ORG.flat.app", "helper", "fire", "Fire", "cursor", "com.maker.Cursor"}) {
    EXPECT_TRUE(registry.isInstalled(id)) << id;
  }
  for (const char* id : {"org.flat.Gone", "org.flat.App.Devel", "dead", "fir", "", "curs"}) {
    EXPECT_FALSE(registry.isInstalled(id)) << id;
  }
  machine.write("etc/flatpak/extra.conf", "[Installation \"away\"]\nPath=" + machine.path("mnt/away"));
  EXPECT_TRUE(registry.isInstalled("org.flat.Gone")) << "it may be on the drive that is away";
}

TEST(LinuxAppRegistry, WatchesThePlacesThatThereAre) {
  AppMachine machine;
  machine.makeFolder("usr/share/applications");
  machine.makeFolder("var/lib/flatpak/app");
  machine.write("Applications");
  EXPECT_EQ(machine.registry().watchedFolders(),
            (Words{machine.path("usr/share/applications"), machine.path("var/lib/flatpak/app")}));
}

}  // namespace
}  // namespace lumenary
