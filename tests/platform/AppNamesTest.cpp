#include <gtest/gtest.h>

#include <algorithm>

#include "platform/linux/DesktopEntry.h"
#include "platform/linux/LinuxAppNames.h"
#include "support/TemporaryHome.h"

namespace lumenary {
namespace {

using Keys = std::map<std::string, std::string, std::less<>>;

TEST(DesktopEntry, IsReadStrictly) {
  const std::vector<std::pair<std::string, Keys>> cases = {
      {"", {}},
      {"Name=Early\n[Desktop Entry]\nName = Maps \nName=Later\n#Exec=x\nExec=maps\n[Desktop Action new]\nIcon=i",
       {{"Name", "Maps"}, {"Exec", "maps"}}},
      {"[Desktop Entry]\r\nName=Maps\r\nno equals\r\n=empty\n", {{"Name", "Maps"}, {"", "empty"}}},
      {"[Desktop Entry]\nName[de]=Karten\nExec=a=b", {{"Name[de]", "Karten"}, {"Exec", "a=b"}}},
      {"[Desktop Entry", {}},
  };
  for (const auto& [text, keys] : cases) {
    EXPECT_EQ(parseDesktopEntry(text), keys) << text;
  }
  EXPECT_EQ(desktopEntryText(R"(a\sb\nc\\d\x\)"), "a b\nc\\d\\x\\");
}

TEST(LinuxAppNames, AreThoseOfDesktopEntries) {
  TemporaryHome home;
  home.write("own/org.gnome.Maps.desktop", "[Desktop Entry]\nName=My Maps\n");
  home.write("system/org.gnome.Maps.desktop", "[Desktop Entry]\nName=Maps\n");
  home.write("system/org.gimp.GIMP.desktop", "[Desktop Entry]\nName=GNU Image\\sEditor\x1b[1m\n");
  home.write("system/org.none.App.desktop", "[Desktop Entry]\nExec=x\n");
  home.makeFolder("system/folder.App.desktop");
  home.write("system/readme.txt", "[Desktop Entry]\nName=No\n");
  const LinuxAppNames names({home.path("absent"), home.path("own"), home.path("system")});
  const std::vector<std::pair<std::string, std::optional<std::string>>> cases = {
      {"org.gnome.maps", "My Maps"},
      {"ORG.gnome.Maps", "My Maps"},
      {"org.gimp.gimp", "GNU Image Editor\uFFFD[1m"},
      {"org.none.app", std::nullopt},
      {"folder.app", std::nullopt},
      {"readme", std::nullopt},
      {"", std::nullopt},
  };
  for (const auto& [identifier, name] : cases) {
    EXPECT_EQ(names.nameOf(identifier), name) << identifier;
  }
}

TEST(LinuxAppNames, LookWhereAppsAre) {
  Places places;
  places.dataHome = "/h/.local/share";
  const auto folders = [&](const char* variable) {
    return applicationFolders([&](const char*) { return variable; }, places);
  };
  const std::vector<std::string> standard = folders(nullptr);
  EXPECT_EQ(standard.front(), "/h/.local/share/applications");
  EXPECT_EQ(standard, folders(""));
  EXPECT_TRUE(std::ranges::find(standard, "/usr/share/applications") != standard.end());
  EXPECT_TRUE(std::ranges::find(standard, "/var/lib/flatpak/exports/share/applications") != standard.end());
  EXPECT_EQ(folders("/a:/b/").at(3), "/b/applications");
}

}  // namespace
}  // namespace lumenary
