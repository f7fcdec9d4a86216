#include <gtest/gtest.h>

#include "apps/AutostartEntries.h"
#include "platform/linux/LinuxDurableFiles.h"
#include "platform/linux/LinuxFileReader.h"
#include "platform/linux/LinuxKernel.h"
#include "support/TemporaryHome.h"

namespace lumenary {
namespace {

using Domain = BackgroundItem::Domain;

TEST(AutostartEntries, TellWhatADesktopStarts) {
  const std::string entry = "[Desktop Entry]\nExec=tool\n";
  const std::string hidden = "[Desktop Entry]\nHidden=true\n";
  const struct {
    const char* name;
    std::string own;
    std::string installed;
    const char* told;  ///< "domain, off, broken"; empty where the entry is left out
  } cases[] = {
      {"installed for all", "", entry, "all"},
      {"the person's own", entry, "", "own"},
      {"the person's own hides the installed one", hidden, entry, "all off"},
      {"the person's own overrides the installed one", entry, hidden, "all"},
      {"hidden", entry + "Hidden=true\n", "", "own off"},
      {"hides nothing", hidden, "", ""},
      {"an empty file hides as well", " ", entry, "all off"},
      {"turned off by a switch of the desktop", entry + "X-GNOME-Autostart-enabled=false\n", "", "own off"},
      {"for this desktop", entry + "OnlyShowIn=KDE; GNOME;\n", "", "own"},
      {"for another desktop", entry + "OnlyShowIn=KDE;\n", "", ""},
      {"not for this desktop", entry + "NotShowIn=KDE;GNOME;\n", "", ""},
      {"its program is installed", entry + "TryExec=present\n", "", "own"},
      {"its program isn't installed", "", entry + "TryExec=absent\n", ""},
      {"the person's own, its program is gone", "[Desktop Entry]\nExec=\"/gone tool\"\nTryExec=/gone\n", "",
       "own gone"},
      {"starts nothing", "[Desktop Entry]\nName=x\n", "", ""},
      {"is no entry", "Exec=tool\n", "", ""},
  };
  for (const auto& [name, own, installed, told] : cases) {
    TemporaryHome home;
    home.write("bin/present");
    home.makeFolder("own");
    home.makeFolder("all");
    if (!own.empty()) {
      home.write("own/a.desktop", own);
    }
    if (!installed.empty()) {
      home.write("all/a.desktop", installed);
    }
    LinuxStartupPlaces places;
    places.autostart = {{home.path("own"), Domain::user}, {home.path("all"), Domain::allUsers}};
    places.desktops = {"ubuntu", "GNOME"};
    places.programFolders = {home.path("bin")};
    LinuxKernel kernel;
    LinuxDurableFiles files(kernel);
    std::string found;
    for (const AutostartEntry& each : autostartEntries(LinuxFileReader(), files, places)) {
      EXPECT_EQ(each.id, "a") << name;
      EXPECT_EQ(each.path, home.path(own.empty() ? "all/a.desktop" : "own/a.desktop")) << name;
      found += std::string(each.domain == Domain::user ? "own" : "all") + (each.isOff ? " off" : "") +
               (each.program == "/gone tool" ? " gone" : "");
    }
    EXPECT_EQ(found, told) << name;
  }
}

TEST(AutostartEntries, ASwitchLeavesEveryOtherLineAsItWas) {
  const struct {
    const char* name;
    const char* before;
    bool isOn;
    std::optional<std::string> after;
  } cases[] = {
      {"off", "# \xff\n[Desktop Entry]\r\nExec=a\r\n\n[Other]\nHidden=no", false,
       "# \xff\n[Desktop Entry]\r\nHidden=true\nExec=a\r\n\n[Other]\nHidden=no"},
      {"off where it said no", "[Desktop Entry]\nHidden = false\nExec=a\n", false,
       "[Desktop Entry]\nHidden=true\nExec=a\n"},
      {"off at the end of the file", "[Desktop Entry]", false, "[Desktop Entry]\nHidden=true\n"},
      {"on", "[Desktop Entry]\nHidden=true\nExec=a\nX-GNOME-Autostart-enabled=false\n#Hidden=true\n[B]\nHidden=true\n",
       true, "[Desktop Entry]\nExec=a\n#Hidden=true\n[B]\nHidden=true\n"},
      {"on where it was", "[Desktop Entry]\nX-GNOME-Autostart-enabled=true\nExec=a", true,
       "[Desktop Entry]\nX-GNOME-Autostart-enabled=true\nExec=a"},
      {"not an entry", "Hidden=true\n", true, std::nullopt},
      {"empty", "", false, std::nullopt},
  };
  for (const auto& [name, before, isOn, after] : cases) {
    EXPECT_EQ(withAutostart(before, isOn), after) << name;
  }
}

TEST(AutostartEntries, TheProgramIsTheFirstWord) {
  EXPECT_EQ(execProgram("  /usr/bin/tool --hidden %U"), "/usr/bin/tool");
  EXPECT_EQ(execProgram(R"("/opt/My \"Tool\"/x" -d)"), R"(/opt/My "Tool"/x)");
  EXPECT_EQ(execProgram(R"("/open\)"), R"(/open\)");
  EXPECT_EQ(execProgram(" \t"), std::nullopt);
}

}  // namespace
}  // namespace lumenary
