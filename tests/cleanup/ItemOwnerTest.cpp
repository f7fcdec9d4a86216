#include <gtest/gtest.h>

#include "cleanup/InstallerTarget.h"
#include "cleanup/ItemOwner.h"
#include "cleanup/OwnerFolder.h"
#include "cleanup/RelativeAge.h"
#include "support/JudgedHome.h"
#include "support/MadeApps.h"

namespace lumenary {
namespace {

const MadeApps& apps() {
  static const MadeApps made({{.path = "/a/Slack.app", .id = "com.tinyspeck.slackmacgap", .name = "Slack"},
                              {.path = "/a/vlc.desktop", .id = "vlc", .name = "VLC media player", .dataNames = {"vlc"}},
                              {.path = "/a/chrome.desktop", .id = "google-chrome", .name = "Google Chrome"},
                              {.path = "/a/maps.desktop", .id = "org.gnome.Maps", .name = "Maps"},
                              {.path = "/a/x.desktop", .id = "io.github.alice.Notes", .name = "Notes"},
                              {.path = "/a/iterm.desktop", .id = "com.googlecode.iterm2", .name = "iTerm"}},
                             {"net.acme.Hidden"});
  return made;
}

std::string told(const std::optional<ItemOwner>& owner) {
  if (!owner) {
    return "none";
  }
  if (owner->isInstalled == true) {
    return owner->name + ": installed";
  }
  if (owner->isGone()) {
    return owner->name + ": gone";
  }
  return owner->name + (owner->isMakersHelper ? ": helper" : ": unknown");
}

TEST(ItemOwner, IsReadFromThePath) {
  const JudgedHome home;
  const std::vector<std::pair<std::string, std::string>> cases = {
      // Below a Library folder.
      {"~/Library/Preferences/com.apple.finder.plist", "macOS: installed"},
      {"~/Library/Group Containers/group.com.apple.notes/x", "macOS: installed"},
      {"~/Library/Caches/com.tinyspeck.SlackMacGap/a/b", "Slack: installed"},
      {"~/Library/Application Support/slack", "slack: installed"},
      {"/LIBRARY/caches/Slack", "Slack: installed"},
      {"~/Library/Saved Application State/net.acme.PhotoTool.savedState", "Photo Tool: gone"},
      {"~/Library/Cookies/net.acme.helper.binarycookies", "Acme Helper: gone"},
      {"~/Library/Logs/org.gnome.Weather", "Weather: helper"},
      {"~/Library/Logs/net.acme.Hidden", "Hidden: installed"},
      {"~/Library/Application Support/Photos Pro", "Photos Pro: unknown"},
      {"~/Library/Application Support/node.js.cache", "node.js.cache: unknown"},
      {"~/Library/Caches", "none"},
      {"~/Library", "none"},
      {"~/Library/Fonts/a.ttf", "none"},
      {"~/Library/Containers/com.tinyspeck.slackmacgap/Data/Library/Caches/x.y", "x.y: unknown"},
      {"~/Documents/a.txt", "none"},
      // Where apps on Linux keep data.
      {"~/.var/app/org.gnome.Maps/cache/x", "Maps: installed"},
      {"~/.var/app/org.acme.Gone", "Gone: gone"},
      {"~/.var/app/org.gnome.Gone", "Gone: gone"},
      {"~/.var/app", "none"},
      {"~/snap/spotify/common", "spotify: unknown"},
      {"~/snap/vlc/current", "VLC media player: installed"},
      {"~/.config/google-chrome/Default", "Google Chrome: installed"},
      {"~/.config/vlc.conf", "VLC media player: installed"},
      {"~/.local/state/VLC", "VLC media player: installed"},
      {"~/.config/notes-old", "notes-old: unknown"},
      {"~/.local/share/net.acme.Gone", "Gone: unknown"},
      {"~/.config/org.gnome.gedit", "Gedit: helper"},
      {"~/.cache/io.github.alice.Draw", "Draw: helper"},
      {"~/.cache/io.github.bob.Draw", "Draw: unknown"},
      {"~/.local/share/icons/x", "none"},
      {"~/.config/mimeapps.list", "none"},
      {"~/.config/bad\x1b[2Jname", "bad\uFFFD[2Jname: unknown"},
  };
  for (const auto& [path, expected] : cases) {
    EXPECT_EQ(told(ItemOwner::of(home.at(path), home.places, apps())), expected) << path;
  }
}

TEST(ItemOwner, GivesAnIdentifierAReadableName) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"com.foo.helper", "Foo Helper"},
      {"com.microsoft.VSCode", "VS Code"},
      {"org.videolan.vlc", "Vlc"},
      {"com.google.Chrome.helper", "Chrome Helper"},
      {"io.github.some-one.photo_tool", "Photo Tool"},
      {"spotify", "Spotify"},
      {"...", "..."},
      {"", ""},
  };
  for (const auto& [identifier, name] : cases) {
    EXPECT_EQ(readableName(identifier), name) << identifier;
  }
}

TEST(InstallerTarget, IsCutFromTheFileName) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"Foo-2.1.dmg", "Foo"},
      {"Foo2.1.PKG", "Foo"},
      {"Visual Studio Code-darwin-universal.dmg", "Visual Studio Code"},
      {"google-chrome-stable_120.0_amd64.deb", "google-chrome-stable"},
      {"zoom_x86_64.rpm", "zoom"},
      {"Foo Installer (1).dmg", "Foo"},
      {"foo-v3.dmg", "foo"},
      {"1Password-8.10.dmg", "1Password"},
      {"install.sh", ""},
      {"2.1.dmg", ""},
      {".dmg", ""},
      {"Foo.iso", ""},
      {"Ünï-\xFF-1.dmg", "Ünï-\uFFFD"},
  };
  for (const auto& [name, expected] : cases) {
    EXPECT_EQ(installedName(name), expected) << name;
  }
}

TEST(InstallerTarget, IsLookedForAmongTheApps) {
  const std::vector<std::pair<std::string, std::optional<InstallerTarget>>> cases = {
      {"/d/Slack-4.36.dmg", InstallerTarget{"Slack", true}},
      {"/d/google-chrome-stable_120.0_amd64.deb", InstallerTarget{"Google Chrome", true}},
      {"/d/google chrome.pkg", InstallerTarget{"google chrome", false}},
      {"/d/iTerm2-3_5.dmg", InstallerTarget{"iTerm", true}},
      {"/d/Foo-2.1.dmg", InstallerTarget{"Foo", false}},
      {"/d/Slack-4.36.zip", std::nullopt},
      {"/d/1.dmg", std::nullopt},
  };
  for (const auto& [path, expected] : cases) {
    EXPECT_EQ(installerTarget(path, apps().all), expected) << path;
  }
}

TEST(RelativeAge, IsToldInTheLargestUnit) {
  const Date now = *parseISO8601("2026-11-22T12:00:00Z");
  const std::vector<std::pair<int, std::string>> cases = {
      {-40, "Today"},      {0, "Today"},         {1, "1 day ago"},       {2, "2 days ago"},      {30, "30 days ago"},
      {31, "1 month ago"}, {59, "1 month ago"},  {60, "2 months ago"},   {364, "12 months ago"}, {365, "1 year ago"},
      {729, "1 year ago"}, {730, "2 years ago"}, {7300, "20 years ago"},
  };
  for (const auto& [days, text] : cases) {
    EXPECT_EQ(relativeAge(now - std::chrono::days(days), now, AgeSuffix::ago), text) << days;
  }
  EXPECT_EQ(relativeAge(now - std::chrono::hours(47), now, AgeSuffix::none), "1 day");
  EXPECT_EQ(relativeAge(Date::min(), Date::max(), AgeSuffix::none), "292471 years");
  EXPECT_EQ(relativeAge(Date::max(), Date::min(), AgeSuffix::none), "Today");
}

}  // namespace
}  // namespace lumenary
