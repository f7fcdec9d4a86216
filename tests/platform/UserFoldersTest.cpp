#include <gtest/gtest.h>

#include "cleanup/TidyPlanner.h"
#include "platform/UserFolders.h"
#include "support/JudgedHome.h"

namespace lumenary {
namespace {

TEST(UserFolders, AreReadAsTheDesktopWritesThem) {
  const Places places = withUserFolders(JudgedHome::madePlaces("/home/anna"),
                                        "# comment\nXDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\n"
                                        "XDG_DOWNLOAD_DIR=\"/home/anna/Laden \\\"x\\\"/\"\n"
                                        "XDG_MUSIC_DIR=\"$HOME/\"\nXDG_PUBLICSHARE_DIR=\"$HOME\"\n"
                                        "XDG_VIDEOS_DIR=\"/srv/films\"\nXDG_PICTURES_DIR=\"$HOME/../bert/x\"\n"
                                        "XDG_DOCUMENTS_DIR=relative\nXDG_TEMPLATES_DIR=\"$HOME/open\nOTHER=\"/x\"");
  EXPECT_EQ(places.personalFolders, (std::vector<std::string>{"/home/anna/Schreibtisch", "/home/anna/Laden \"x\""}));
  EXPECT_EQ(places.downloads, "/home/anna/Laden \"x\"");
}

TEST(UserFolders, CountAsThePersonsOwn) {
  const JudgedHome home(
      withUserFolders(JudgedHome::madePlaces("/home/anna"), "XDG_DOWNLOAD_DIR=\"$HOME/Téléchargements\""));
  EXPECT_FALSE(home.gate.canMoveToTrash(folderEntry(home.at("~/Téléchargements"))));
  EXPECT_TRUE(home.gate.canMoveToTrash(fileEntry(home.at("~/Téléchargements/a.iso"))));
  const auto noProject = [](std::string_view) { return false; };
  const auto isPersonal = [&](const char* path) {
    return TidyPlanner::isPersonalCopy(home.at(path), home.places.home, noProject, home.gate.personalFolders());
  };
  EXPECT_TRUE(isPersonal("~/Téléchargements/a/b.iso"));
  EXPECT_FALSE(isPersonal("~/Téléchargements/build/b.iso"));
  EXPECT_FALSE(isPersonal("~/Téléchargements 2/b.iso"));
  const CleanupCatalog catalog(home.apps, home.places.downloads);
  EXPECT_EQ(catalog.match(home.at("~/Téléchargements/a.iso"), home.places.home)->title, "Installer");
  EXPECT_EQ(catalog.match(home.at("~/Téléchargements/a.zip"), home.places.home), nullptr);
}

}  // namespace
}  // namespace lumenary
