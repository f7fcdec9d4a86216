#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "cleanup/CatalogRows.h"
#include "cleanup/CleanupTier.h"
#include "cleanup/LinuxCatalog.h"
#include "cleanup/StorageSafety.h"
#include "platform/GuardList.h"
#include "support/JudgedHome.h"

namespace lumenary {
namespace {

using enum CleanupCatalog::Verdict;

TEST(CleanupCatalog, NamesPlaces) {
  JudgedHome home;
  home.apps.names = {{"com.spotify.client", "Spotify"}, {"org.gimp.GIMP", "GIMP"}};
  struct Case {
    std::string path;
    std::string title;  ///< empty: no rule
    std::string madeBy;
  };
  const std::vector<Case> cases = {
      {"/Volumes/Disk/._photo.jpg", "macOS leftover file", "macOS"},
      {"~/a/.DS_Store", "macOS leftover file", "macOS"},
      {"/Volumes/Disk/proj/node_modules/a", "Project dependencies (node_modules)", "npm, yarn or pnpm"},
      {"/srv/node_modules_old/a", "Project dependencies (node_modules)", "npm, yarn or pnpm"},
      {"/srv/x/.codex/worktrees/a", "Coding agent worktrees", "Claude Code or Codex"},
      {"/srv/x/.claude/worktrees", "", ""},
      {"/Volumes/Disk/Library/Caches/Yarn", "", ""},
      {"~/Library/Caches/Yarn", "Yarn cache", "Yarn"},
      {"~/LIBRARY/caches/yarn/v6", "Yarn cache", "Yarn"},
      {"~/.cargo/git/db", "Cargo Git cache", "Cargo"},
      {"~/.cargo/gitconfig", "", ""},
      {"~/Downloads/a/b/Setup.DMG", "Installer", "You downloaded it"},
      {"~/Downloads/tool.deb", "Installer", "You downloaded it"},
      {"~/Downloads/Setup.zip", "", ""},
      {"~/Desktop/Setup.dmg", "", ""},
      {"~/Library/Caches", "", ""},
      {"~/.cache", "", ""},
      {"~/Library/Caches/foo/bar", "Foo cache", "Foo"},
      {"~/.cache/foo bar-baz/x", "Foo Bar-Baz cache", "Foo Bar-Baz"},
      {"~/Library/Caches/com.nobody.app", "App cache", "An app"},
      {"~/.cache/com.spotify.client/Data", "Spotify cache", "Spotify"},
      {"~/.trash/x", "Trash", "You"},
      {"~", "", ""},
      {"/home/anna2/.cache/foo", "", ""},
      {"~/.cache/caf\xff/x", "Caf\uFFFD cache", "Caf\uFFFD"},
      {"~/.cache/Google/AndroidStudio2026.1/x", "Android Studio index and Local History", "Android Studio"},
      {"~/.var/app/com.jetbrains.PyCharm/cache/x", "JetBrains index and Local History", "JetBrains"},
      // Linux
      {"~/.cache/google-chrome/Default/Cache", "Chrome browser cache", "Google Chrome"},
      {"~/.cache/mesa_shader_cache_db/x", "Shader cache", "The graphics driver"},
      {"~/.cache/thumbnails", "Thumbnails", "Your desktop"},
      {"~/.cache/Thumbnails", "Thumbnails cache", "Thumbnails"},
      {"~/.cache/rclone/vfs", "rclone uploads", "rclone"},
      {"~/.cache/keyring-X2F/control", "Keyring connection", "GNOME Keyring"},
      {"~/.cache/pypoetry", "", ""},
      {"~/.cache/pypoetry/virtualenvs/a", "Poetry environments", "Python Poetry"},
      {"~/.cache/pypoetry/cache", "Poetry cache", "Python Poetry"},
      {"~/.config/Code/Cache", "VS Code cache", "VS Code"},
      {"~/.config/obsidian/GPUCache", "Obsidian cache", "Obsidian"},
      {"~/.config/com.unknown/Cache", "App cache", "An app"},
      {"~/.config/obsidian/cache", "", ""},
      {"~/.config/obsidian", "", ""},
      {"~/.config/google-chrome/Default/Cache", "Chrome profile", "Chrome"},
      {"/mnt/games/steamapps/shadercache/570", "Shader cache", "Steam"},
      {"/mnt/games/steamapps/common/Game", "Steam games", "Steam"},
      {"/mnt/games/mysteamapps/common", "", ""},
      {"~/.var/app/org.gimp.GIMP/cache/x", "GIMP cache", "GIMP"},
      {"~/.var/app/org.gimp.GIMP/config", "GIMP data", "GIMP"},
      {"~/.var/app/org.gone.App/config", "Flatpak app data", "A Flatpak app"},
      {"~/.var/app/org.gimp.GIMP/data/Trash", "Trash of a confined app", "You"},
      {"~/OneDrive - Work/x", "OneDrive folder", "OneDrive"},
      {"/var/lib/docker/overlay2", "Docker data", "Docker"},
      {"/var/lib", "", ""},
  };
  for (const auto& [path, title, madeBy] : cases) {
    const auto* rule = home.catalog.match(home.at(path), home.places.home);
    EXPECT_EQ(rule == nullptr ? "" : rule->title, title) << path;
    EXPECT_EQ(rule == nullptr ? "" : rule->madeBy, madeBy) << path;
  }
}

/// One path for each text that a pattern of the Linux table stands for.
std::vector<std::string> samples(std::string pattern) {
  const std::size_t open = pattern.find('{');
  if (open == std::string::npos) {
    for (std::size_t star = pattern.find('*'); star != std::string::npos; star = pattern.find('*')) {
      if (pattern.starts_with("**")) {
        pattern.replace(0, 2, "~/games");
      } else {
        pattern.replace(star, 1, "org.sample.App");
      }
    }
    return {pattern};
  }
  const std::size_t close = pattern.find('}');
  std::vector<std::string> all;
  for (std::size_t begin = open + 1; begin <= close;) {
    const std::size_t end = std::min(pattern.find(',', begin), close);
    for (const std::string& one :
         samples(pattern.substr(0, open) + pattern.substr(begin, end - begin) + pattern.substr(close + 1))) {
      all.push_back(one);
    }
    begin = end + 1;
  }
  return all;
}

struct KnownPlace {
  std::string path;  ///< "~/…" or "/…"
  CleanupCatalog::Verdict verdict;
};

/// All places of both tables, spelled as on the disk.
std::vector<KnownPlace> knownPlaces() {
  std::vector<KnownPlace> places;
  for (const CatalogRow& row : homeRules()) {
    std::string path = "~/" + row.prefix;
    for (const auto& [lowered, spelled] :
         std::vector<std::pair<std::string, std::string>>{{"~/library/", "~/Library/"},
                                                          {"/caches", "/Caches"},
                                                          {"/application support/", "/Application Support/"}}) {
      if (const std::size_t found = path.find(lowered); found != std::string::npos) {
        path.replace(found, lowered.size(), spelled);
      }
    }
    places.push_back({path == "~/.trash" ? "~/.Trash" : path, row.rule.verdict});
  }
  for (const LinuxRow& row : linuxRows()) {
    for (const std::string& path : samples(std::string(row.pattern))) {
      places.push_back({path, verdictOf(row)});
    }
  }
  return places;
}

TEST(CleanupCatalog, SpeaksInSentences) {
  const auto check = [](const CleanupCatalog::Rule& rule) {
    for (const std::string& text : {rule.title, rule.madeBy}) {
      EXPECT_FALSE(text.empty() || text.ends_with('.')) << rule.title;
    }
    for (const std::string& sentence : {rule.what, rule.ifRemoved, rule.betterWay.value_or("x.")}) {
      EXPECT_TRUE(sentence.ends_with('.')) << rule.title << ": " << sentence;
    }
  };
  std::set<std::string> prefixes;
  for (const CatalogRow& row : homeRules()) {
    EXPECT_TRUE(prefixes.insert(row.prefix).second) << row.prefix;
    check(row.rule);
  }
  EXPECT_EQ(prefixes.size(), 80U);
  for (const LinuxRow& row : linuxRows()) {
    const auto* rule = std::get_if<CleanupCatalog::Rule>(&row.rule);
    check(rule != nullptr ? *rule : std::get<LinuxRow::Template>(row.rule)("Name"));
    check(rule != nullptr ? *rule : std::get<LinuxRow::Template>(row.rule)(""));
  }
}

TEST(CleanupCatalog, EveryRowIsReachedAndKeepsItsPromise) {
  const TemporaryHome disk;
  JudgedHome home(disk.places());
  const GuardList guard(home.reader, home.mounts.all, home.places);
  const auto never = [](const std::string&) { return false; };
  for (const auto& [pattern, verdict] : knownPlaces()) {
    const std::string path = home.at(pattern);
    const auto* rule = home.catalog.match(path, home.places.home);
    ASSERT_NE(rule, nullptr) << pattern;
    EXPECT_EQ(rule->verdict, verdict) << pattern;
    const FileEntry entry = folderEntry(path, 1 << 30);
    const bool canMove = home.gate.canMoveToTrash(entry);
    const auto tier = cleanupTier(entry, home.catalog, home.gate);
    switch (verdict) {
      case rebuildable:
        EXPECT_TRUE(canMove) << pattern;
        EXPECT_FALSE(guard.keeps(path, {})) << pattern;
        EXPECT_EQ(tier, CleanupTier::recommended) << pattern;
        EXPECT_FALSE(matchLinuxRows(path, home.places.home).holdsReview) << pattern << " holds what a person decides";
        EXPECT_FALSE(mustStayOnLinux(path, home.places.home)) << pattern;
        break;
      case review:
        EXPECT_NE(tier, CleanupTier::recommended) << pattern;
        break;
      case keep: {
        EXPECT_EQ(tier, CleanupTier::managed) << pattern;
        const StorageNode node{.path = path, .name = entry.name, .byteCount = 1, .file = {}};
        EXPECT_EQ(StorageSafety::classify(node, home.places.home, home.catalog, never, [](const auto&) { return true; })
                      .level,
                  StorageSafety::Level::keep)
            << pattern;
        break;
      }
    }
  }
}

TEST(CleanupCatalog, OnLinuxWhatMustStayStaysWithAllThatHoldsIt) {
  JudgedHome home;
  for (const LinuxRow& row : linuxRows()) {
    if (verdictOf(row) != keep) {
      continue;
    }
    for (const std::string& sample : samples(std::string(row.pattern))) {
      EXPECT_FALSE(home.gate.canMoveToTrash(folderEntry(home.at(sample)))) << sample;
      EXPECT_FALSE(home.gate.canMoveToTrash(fileEntry(home.at(sample) + "/inside"))) << sample;
      const bool isAnywhere = row.pattern.starts_with("**");
      const std::string around(parentPath(home.at(sample)));
      EXPECT_FALSE(!isAnywhere && home.gate.canMoveToTrash(folderEntry(around))) << "around " << sample;
    }
  }
}

}  // namespace
}  // namespace lumenary
