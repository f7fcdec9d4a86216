#include <gtest/gtest.h>

#include <map>

#include "apps/AppBreakdown.h"
#include "base/Path.h"
#include "support/AppHome.h"
#include "support/HookedReader.h"

namespace lumenary {
namespace {

using Items = std::set<std::string>;

TEST(AppInventoryScanner, FindsBundlesTwoLevelsDeep) {
  AppHome home;
  const std::string id = "<key>CFBundleIdentifier</key><string>com.example.";
  home.makeBundle("Applications/Plain.app", id + "plain</string>");
  home.makeBundle("Applications/File.app",
                  id + "told</string><key>CFBundleDisplayName</key><string>Told &amp; Co</string>"
                       "<key>CFBundleShortVersionString</key><string>1.5</string>");
  home.makeBundle("Applications/Suite/Inner.app",
                  id + "inner</string><key>CFBundleDisplayName</key><integer>7</integer>");
  home.makeBundle("Applications/Suite/Deeper/Deep.app", id + "deep</string>");
  home.makeBundle("Applications/Nameless.app", "<key>CFBundleDisplayName</key><string>Nameless</string>");
  home.makeBundle("own/Applications/Copy.app", id + "plain</string>");
  home.write("Applications/Damaged.app/Contents/Info.plist", "<plist><dict>");
  home.write("Applications/Binary.app/Contents/Info.plist", "bplist00");
  home.build({{"Applications/Loop", LinkTo{"."}}, {"Applications/Gone.app", LinkTo{"nowhere"}}});
  std::map<std::string, std::pair<std::string, std::string>> apps;
  for (const InstalledApp& app : home.inventory().apps) {
    EXPECT_GT(app.appBytes, 0);
    apps[app.bundleID] = {app.name, app.version.value_or("none")};
  }
  const std::map<std::string, std::pair<std::string, std::string>> expected = {
      {"com.example.plain", {"Plain", "none"}},
      {"com.example.told", {"Told & Co", "1.5"}},
      {"com.example.inner", {"Inner", "none"}},
  };
  EXPECT_EQ(apps, expected);
}

TEST(AppInventoryScanner, TiesFoldersToApps) {
  AppHome home;
  home.makeApp("Example", "com.example.app");
  home.makeApp("Helper", "com.example.app.helper");
  home.makeApp("Slack", "com.tinyspeck.slackmacgap");
  for (const char* folder : {"Caches/com.example.app", "Caches/COM.Example.App.gpu", "Caches/com.example.app.helper.x",
                             "Caches/.hidden", "Logs/Example", "Saved Application State/com.example.app.savedState",
                             "HTTPStorages/com.example.app", "WebKit/com.example.app", "Application Support/slack",
                             "Containers/com.tinyspeck.slackmacgap", "Group Containers/com.example.app"}) {
    home.fill(folder);
  }
  home.write("Library/Logs/com.example.app.log");
  home.write("Library/HTTPStorages/com.example.app.binarycookies");
  const AppInventory inventory = home.inventory();
  EXPECT_EQ(home.itemsOf(inventory, "Example"),
            (Items{"Cache @ Library/Caches/com.example.app", "Cache @ Library/Caches/COM.Example.App.gpu",
                   "Logs @ Library/Logs/Example", "Logs @ Library/Logs/com.example.app.log",
                   "Saved windows @ Library/Saved Application State/com.example.app.savedState",
                   "Web data @ Library/HTTPStorages/com.example.app",
                   "Web data @ Library/HTTPStorages/com.example.app.binarycookies",
                   "Web data @ Library/WebKit/com.example.app"}));
  EXPECT_EQ(home.itemsOf(inventory, "Helper"), (Items{"Cache @ Library/Caches/com.example.app.helper.x"}));
  EXPECT_EQ(home.itemsOf(inventory, "Slack"),
            (Items{"App data @ Library/Application Support/slack",
                   "Sandbox container @ Library/Containers/com.tinyspeck.slackmacgap"}));
  EXPECT_TRUE(inventory.leftovers.empty());
}

TEST(AppInventoryScanner, LooksIntoFoldersOfMakers) {
  struct Case {
    const char* app;
    const char* folder;
    bool isTied;
  };
  const std::vector<Case> cases = {
      {"Chrome", "Caches/Google/Chrome", true},
      {"Google Chrome", "Application Support/Google/Chrome", true},  // with the maker's name in front
      {"Example", "Logs/Maker/Example Pro", true},                   // seven letters
      {"Examples", "Logs/Maker/Example Pro", false},
      {"Examp", "Logs/Maker/Example Pro", false},  // five letters
      {"Example", "Logs/Maker/.Example", false},
      {"Example", "WebKit/Maker/Example", false},  // nobody looks there
  };
  for (const Case& one : cases) {
    AppHome home;
    home.makeApp(one.app, "com.maker.one");
    home.fill(one.folder);
    EXPECT_EQ(home.itemsOf(home.inventory(), one.app)->size(), one.isTied ? 1U : 0U) << one.app << " " << one.folder;
  }
  AppHome crowded;
  crowded.makeApp("Example", "com.maker.one");
  crowded.fill("Caches/Maker/Example");
  for (int index = 0; index < 64; ++index) {
    crowded.makeFolder("Library/Caches/Maker/" + std::to_string(index));
  }
  EXPECT_EQ(crowded.itemsOf(crowded.inventory(), "Example"), Items());
}

TEST(AppInventoryScanner, TellsWhatRemovedAppsLeft) {
  AppHome home;
  home.scanner.ownBundleID = "com.example.Own";
  home.scanner.isInstalledAnywhere = [](std::string_view id) { return id == "com.example.away"; };
  for (const char* folder : {"Caches/com.example.gone", "Saved Application State/com.example.gone.savedState",
                             "Application Support/com.example.Gone", "Containers/org.example.boxed", "Caches/Sparkle",
                             "Caches/example.app", "Caches/com.apple.thing", "Caches/com.example.own",
                             "Caches/com.example.away.helper", "Caches/com.example.A B"}) {
    home.fill(folder);
  }
  home.makeFolder("Library/Caches/com.example.empty");
  const AppInventory inventory = home.inventory();
  EXPECT_EQ(home.leftovers(inventory),
            (std::vector<std::pair<std::string, Items>>{
                {"com.example.gone",
                 {"Cache @ Library/Caches/com.example.gone",
                  "Saved windows @ Library/Saved Application State/com.example.gone.savedState"}},
                {"com.example.Gone", {"App data @ Library/Application Support/com.example.Gone"}},
                {"org.example.boxed", {"Sandbox container @ Library/Containers/org.example.boxed"}}}));
  EXPECT_EQ(inventory.leftovers[0].items[0].verdict, AppDataVerdict::safe);
  EXPECT_EQ(inventory.leftovers[1].items[0].verdict, AppDataVerdict::caution);
  EXPECT_EQ(inventory.leftovers[2].items[0].explanation,
            "Data the removed app left behind. Check it first if you might install the app again.");
}

TEST(AppInventoryScanner, KnowsWhatSomeAppsKeepInTheHomeFolder) {
  AppHome home;
  home.makeApp("Editor", "com.microsoft.VSCode");
  home.makeApp("Cursor", "com.todesktop.230313mzl4w4u92");
  home.build({{".vscode/extensions/file", 1}, {".vscode/argv.json", 1}, {".other/file", 1}});
  const AppInventory inventory = home.inventory();
  EXPECT_EQ(home.itemsOf(inventory, "Editor"),
            (Items{"Extensions @ .vscode/extensions", "Settings and other files @ .vscode"}));
  EXPECT_EQ(home.itemsOf(inventory, "Cursor"), Items());
}

TEST(AppInventoryScanner, OrdersBySizeAndTellsWhatRuns) {
  AppHome home;
  home.makeApp("Small", "com.example.small");
  home.makeApp("Large", "com.example.large");
  home.build({{"Library/Caches/com.example.large/file", 100'000}, {"Library/Logs/com.example.large/file", 200'000}});
  home.scanner.runningBundleIDs = {"com.example.small", "com.example.LARGE"};
  const AppInventory inventory = home.inventory();
  ASSERT_EQ(inventory.apps.size(), 2U);
  EXPECT_EQ(inventory.apps[0].name, "Large");
  EXPECT_EQ(inventory.apps[0].items[0].title, "Logs");
  EXPECT_FALSE(inventory.apps[0].isRunning);
  EXPECT_TRUE(inventory.apps[1].isRunning);
  EXPECT_EQ(inventory.safeBytes(), inventory.apps[0].safeBytes());
}

/// What one inventory touches, by path.
std::map<std::string, int> foldersOpened(AppHome& home) {
  std::map<std::string, int> opened;
  const HookedReader counting(home.reader, [&](HookedReader::Call call, std::string_view name) {
    if (call == HookedReader::Call::openFolder) {
      ++opened[std::string(name)];
    }
    return std::optional<SystemError>();
  });
  home.scanner.inventory(counting, home.files);
  return opened;
}

TEST(AppInventoryScanner, TouchesNoFolderTwiceAfterAScan) {
  AppHome home;
  home.makeApp("Chrome", "com.google.Chrome");
  home.makeApp("Editor", "com.microsoft.VSCode");
  std::vector<FolderByteTotals::Folder> known = {{home.path("Applications/Chrome.app"), 5},
                                                 {home.path("Applications/Editor.app"), 5}};
  for (const char* folder :
       {"Library/Caches/Google/Chrome", "Library/Application Support/Google/Chrome/Default/IndexedDB",
        "Library/Application Support/Google/Chrome/Default/Service Worker/CacheStorage",
        "Library/Application Support/Google/Chrome/1.2/x", "Library/Containers/com.google.Chrome/Data",
        "Library/Caches/com.example.gone/deep", ".vscode/extensions"}) {
    home.makeFolder(folder);
    for (std::string at = home.path(folder); at != home.root(); at = parentPath(at)) {
      known.push_back({at, smallestBrokenDown});
    }
  }
  // What is small has no size of its own in a scan.
  home.build({{"Library/Application Support/Google/Chrome/small/file", 1}, {"Library/Logs/com.google.Chrome/file", 1}});
  home.scanner.knownSizes = FolderByteTotals(std::move(known));
  const auto opened = foldersOpened(home);
  EXPECT_GT(opened.size(), 10U);
  for (const auto& [path, times] : opened) {
    EXPECT_EQ(times, 1) << path;
  }
  home.scanner.includesContainers = false;
  for (const auto& [path, times] : foldersOpened(home)) {
    EXPECT_FALSE(path.contains("/Containers")) << path;
  }
}

}  // namespace
}  // namespace lumenary
