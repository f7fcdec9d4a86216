#include <gtest/gtest.h>

#include <chrono>

#include "cleanup/LookFirstGroup.h"
#include "cleanup/MacJunk.h"
#include "cleanup/TidyPlanner.h"
#include "support/HookedReader.h"
#include "support/JudgedHome.h"

namespace lumenary {
namespace {

using namespace std::chrono_literals;

constexpr std::int64_t large = 52'428'800;
const Date now = std::chrono::sys_days(std::chrono::year(2026) / 11 / 23);

struct Planner {
  TemporaryHome disk;
  JudgedHome home{disk.places()};
  StorageScanResult result;
  std::vector<DuplicateGroup> duplicates;
  std::vector<FileEntry> junk;
  bool includeBuildFiles = true;

  void setFolders(const std::vector<std::pair<std::string, std::int64_t>>& folders) {
    std::vector<FolderByteTotals::Folder> totals;
    for (const auto& [path, bytes] : folders) {
      totals.push_back({home.at(path), bytes});
    }
    result.folderByteTotals = FolderByteTotals(std::move(totals));
  }
  TidyPlan plan() {
    return TidyPlanner(home.reader, home.catalog, home.gate).plan(result, duplicates, junk, includeBuildFiles, now);
  }
  /// "kind path", the home as "~".
  std::vector<std::string> lines() {
    std::vector<std::string> lines;
    for (const TidyItem& item : plan().items) {
      lines.push_back(std::string(rawValue(item.kind)) + " ~" + item.entry.url.path.substr(home.places.home.size()));
    }
    return lines;
  }
};

using Lines = std::vector<std::string>;

TEST(TidyPlanner, TakesCachesAndBuildOutputByTheFolder) {
  Planner planner;
  EXPECT_EQ(planner.lines(), Lines());
  planner.setFolders({{"~/Library/Caches/small", 1'048'575},
                      {"~/Library/Caches/fits", 1'048'576},
                      {"~/.cache/fits", 1'048'576},
                      {"~/.npm/_cacache", large - 1},
                      {"~/.npm/_npx", large},
                      {"~/Library/Caches/Yarn", large},
                      {"~/Library/Caches/Yarn/v6", large},
                      {"~/Library/Caches", 10 * large},
                      {"~/p/node_modules", large},
                      {"~/Library/Developer/Xcode/DerivedData", large},
                      {"~/.codex/sessions", large},
                      {"~/unknown", large},
                      {"/srv/node_modules", large},
                      {"~/.config/app/node_modules", large},
                      {"~/.cache/rclone", large},
                      {"~/.cache/é", 1'048'576},
                      {"~/.cache/abc", 1'048'576}});
  EXPECT_EQ(planner.lines(),
            (Lines{"cache ~/.cache/é", "cache ~/.npm/_npx", "cache ~/.cache/abc", "cache ~/.cache/fits",
                   "buildFiles ~/p/node_modules", "cache ~/Library/Caches/Yarn", "cache ~/Library/Caches/fits",
                   "buildFiles ~/Library/Developer/Xcode/DerivedData"}));
  TidyPlan plan = planner.plan();
  EXPECT_EQ(plan.buildBytes, 2 * large);
  EXPECT_EQ(plan.buildItemCount, 2U);
  EXPECT_EQ(plan.bytes, plan.safeBytes + plan.buildBytes);
  planner.includeBuildFiles = false;
  EXPECT_EQ(planner.plan().buildItemCount, 0U);
  EXPECT_EQ(planner.plan().safeBytes, plan.safeBytes);
}

TEST(TidyPlanner, TakesCopiesOnlyFromAmongThePersonsOwn) {
  Planner planner;
  planner.disk.build({{"Documents/proj/package.json"}, {"Documents/notes/"}, {"Documents/Makefile"}});
  const std::vector<std::pair<std::string, bool>> cases = {
      {"~/Movies/x.mov", true},
      {"~/Videos/2020/x.mov", true},
      {"~/Documents/x.zip", true},  // the root itself is never asked
      {"~/Documents/notes/x.zip", true},
      {"~/Documents/proj/x.zip", false},
      {"~/Documents/proj/deep/er/x.zip", false},
      {"~/Documents/a/Dist/x.zip", false},
      {"~/Documents/.hidden/x.zip", false},
      {"~/Documents/Tool.app/x.zip", false},
      {"~/Documents/x.framework.d/x.zip", false},
      {"~/Library/x.bin", false},
      {"~/x.bin", false},
      {"~/Documents", false},
      {"/home/other/Documents/x.zip", false},
  };
  const auto isProject = [&](std::string_view folder) {
    return planner.home.reader.exists(std::string(folder) + "/package.json");
  };
  for (const auto& [path, expected] : cases) {
    EXPECT_EQ(TidyPlanner::isPersonalCopy(planner.home.at(path), planner.home.places.home, isProject), expected)
        << path;
    planner.duplicates.push_back({.id = path,
                                  .keep = fileEntry(planner.home.at("~/Music/kept.bin"), 20),
                                  .extras = {fileEntry(planner.home.at(path), 10)},
                                  .sameFolder = path == "~/Movies/x.mov"});
  }
  planner.setFolders({{"~/Library/Caches/foo", large}});
  planner.duplicates.push_back({.id = "goes",
                                .keep = fileEntry(planner.home.at("~/Library/Caches/foo/x"), 20),
                                .extras = {fileEntry(planner.home.at("~/Movies/only.mov"), 10)}});
  EXPECT_EQ(planner.lines(),
            (Lines{"cache ~/Library/Caches/foo", "duplicate ~/Movies/x.mov", "duplicate ~/Videos/2020/x.mov",
                   "duplicate ~/Documents/x.zip", "duplicate ~/Documents/notes/x.zip"}))
      << "nothing whose kept copy would go itself";
  const auto items = planner.plan().items;
  EXPECT_EQ(items[1].reason, "Exact copy of kept.bin, which stays in the same folder.");
  EXPECT_EQ(items[2].reason, "Exact copy of kept.bin, which stays at Music.");
  EXPECT_EQ(items[2].title, "Duplicate copies");
  EXPECT_EQ(items[2].survivor, planner.duplicates[1].keep);
}

TEST(TidyPlanner, TakesNoCopyWhoseTwinMightNotLast) {
  const std::vector<std::pair<std::string, bool>> places = {
      {"~/Music/kept.iso", true},
      {"~/Documents/proj/kept.iso", true},
      {"~/Documents/proj/dist/kept.iso", false},
      {"~/proj/Node_Modules/kept.iso", false},
      {"~/.cache/tool/kept.iso", false},
      {"~/.var/app/org.x/data/Trash/files/kept.iso", false},
      {"/media/anna/Stick/.Trash-1000/files/kept.iso", false},
  };
  for (const auto& [keep, isTaken] : places) {
    Planner planner;
    planner.duplicates.push_back({.id = keep,
                                  .keep = fileEntry(planner.home.at(keep), 20),
                                  .extras = {fileEntry(planner.home.at("~/Movies/x.iso"), 20)}});
    EXPECT_EQ(planner.lines(), isTaken ? Lines{"duplicate ~/Movies/x.iso"} : Lines()) << keep;
  }
  // The copy that would stay goes as an old installer.
  Planner planner;
  FileEntry kept = fileEntry(planner.home.at("~/Downloads/a.iso"), 20);
  kept.modifiedAt = now - std::chrono::days(60);
  planner.duplicates.push_back({.id = "a",
                                .keep = kept,
                                .extras = {fileEntry(planner.home.at("~/Downloads/a (1).iso"), 20)},
                                .sameFolder = true});
  planner.result.entries = {kept};
  EXPECT_EQ(planner.lines(), Lines{"installer ~/Downloads/a.iso"});
}

TEST(TidyPlanner, AsksOnceWhetherAFolderIsAProject) {
  Planner planner;
  planner.disk.build({{"Documents/a/b/"}});
  std::map<std::string, int> asked;
  const HookedReader counting(planner.home.reader, [&](HookedReader::Call, std::string_view path) {
    ++asked[std::string(path)];
    return std::optional<SystemError>();
  });
  for (int copy = 0; copy < 20; ++copy) {
    planner.duplicates.push_back({.id = "d",
                                  .keep = fileEntry(planner.home.at("~/Music/k")),
                                  .extras = {fileEntry(planner.home.at("~/Documents/a/b/" + std::to_string(copy)))}});
  }
  const TidyPlanner plain(counting, planner.home.catalog, planner.home.gate);
  EXPECT_EQ(plain.plan(planner.result, planner.duplicates, {}, true, now).items.size(), 20U);
  EXPECT_EQ(asked.size(), 22U) << "eleven names in two folders";
  for (const auto& [path, count] : asked) {
    EXPECT_EQ(count, 1) << path;
  }
}

TEST(TidyPlanner, TakesInstallersThatGrewOldInDownloads) {
  Planner planner;
  const auto add = [&](const std::string& path, std::optional<std::chrono::seconds> age) {
    planner.result.entries.push_back(
        fileEntry(planner.home.at(path), 10, age ? std::optional<Date>(now - *age) : std::nullopt));
  };
  add("~/Downloads/exactly.dmg", 2'592'000s);
  add("~/Downloads/older.DMG", 2'592'001s);
  add("~/Downloads/sub/tool.deb", 9'999'999s);
  add("~/Downloads/undated.iso", std::nullopt);
  add("~/Downloads/a.zip", 9'999'999s);
  add("~/Desktop/a.dmg", 9'999'999s);
  add("~/Downloads/node_modules/a.dmg", 9'999'999s);
  EXPECT_EQ(planner.lines(), (Lines{"installer ~/Downloads/older.DMG", "installer ~/Downloads/sub/tool.deb"}));
  const TidyPlan plan = planner.plan();
  EXPECT_EQ(plan.items[0].title, "Old installers");
  EXPECT_EQ(plan.items[0].reason, "Download it again from the maker's site if you ever need it.");
  EXPECT_EQ(plan.bytes, 20);
  EXPECT_EQ(plan.safeBytes, 0);
}

TEST(TidyPlanner, CountsLeftoversOnceAndTellsGroupsBySize) {
  Planner planner;
  planner.setFolders(
      {{"~/Library/Caches/foo", large}, {"~/Library/Caches/bar", 2 * large}, {"~/.cache/foo", large + 1}});
  planner.junk = {fileEntry(planner.home.at("~/Library/Caches/foo/.DS_Store"), 10),
                  fileEntry(planner.home.at("~/a/.DS_Store"), 4'000'000),
                  fileEntry(planner.home.at("~/a/._x"), 96'000)};
  const TidyPlan plan = planner.plan();
  EXPECT_EQ(plan.items.size(), 5U);
  const std::string rebuilds = "The app rebuilds it as you use it; the first launch may be a little slower.";
  EXPECT_EQ(plan.groups(), (std::vector<TidyPlan::Group>{
                               {"Foo cache", 2 * large + 1, rebuilds},
                               {"Bar cache", 2 * large, rebuilds},
                               {"macOS leftover files", 4'096'000, "Hidden Finder metadata; nothing you made."}}));
  EXPECT_EQ(receiptLines(plan).back(), "macOS leftover files · 4.1 MB: Hidden Finder metadata; nothing you made.");
}

TEST(LookFirstGroup, GathersWhatAPersonDecides) {
  JudgedHome home;
  std::vector<FolderByteTotals::Folder> folders;
  for (const auto& [path, bytes] :
       std::vector<std::pair<std::string, std::int64_t>>{{"~/.codex/sessions", 5},
                                                         {"~/.codex/sessions/2025", 3},
                                                         {"~/.gemini/antigravity/brain", 4},
                                                         {"~/.gemini/antigravity/conversations", 4},
                                                         {"~/.cache/foo", 100},
                                                         {"~/.local/share/containers", 100},
                                                         {"~/.local/share/containers/.ollama/models", 50},
                                                         {"~", 1000}}) {
    folders.push_back({home.at(path), bytes});
  }
  const auto groups = LookFirstGroup::groups(FolderByteTotals(folders), home.places.home, home.catalog);
  ASSERT_EQ(groups.size(), 2U);
  EXPECT_EQ(groups[0].title, "Antigravity history");
  EXPECT_EQ(groups[0].bytes, 8);
  EXPECT_EQ(groups[0].urls, (std::vector<FileURL>{{home.at("~/.gemini/antigravity/brain"), true},
                                                  {home.at("~/.gemini/antigravity/conversations"), true}}));
  EXPECT_EQ(groups[1].bytes, 5);
  EXPECT_EQ(groups[1].what, "Saved conversations and working notes from Codex sessions.");
}

TEST(MacJunk, FindsWhatFinderLeft) {
  TemporaryTree tree{{"a/.DS_Store", 10},     {"a/._photo.jpg", 10},   {"a/photo.jpg", 10},
                     {"._link", LinkTo{"a"}}, {"linked", LinkTo{"a"}}, {"._folder/.DS_Store", 10},
                     {".Trashes/._x", 10},    {"Tool.app/._x", 10},    {"Mine.photoslibrary/._x", 10}};
  const LinuxFileReader reader;
  const auto found = [&](std::size_t limit, const std::stop_token& stop = {}) {
    std::set<std::string> paths;
    for (const FileEntry& entry : macJunk(reader, tree.root(), limit, stop)) {
      EXPECT_GT(entry.byteCount, 0);
      paths.insert(entry.url.path.substr(tree.root().size() + 1));
    }
    return paths;
  };
  EXPECT_EQ(found(macJunkLimit), (std::set<std::string>{"a/.DS_Store", "a/._photo.jpg", "._folder/.DS_Store"}));
  EXPECT_EQ(found(2).size(), 2U);
  std::stop_source stop;
  stop.request_stop();
  EXPECT_EQ(found(macJunkLimit, stop.get_token()).size(), 0U);
  EXPECT_TRUE(macJunk(reader, "/", macJunkLimit).empty());
}

}  // namespace
}  // namespace lumenary
