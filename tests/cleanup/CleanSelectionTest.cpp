#include <gtest/gtest.h>

#include <chrono>

#include "cleanup/BusyTools.h"
#include "cleanup/CatalogRows.h"
#include "cleanup/CleanSelection.h"
#include "cleanup/LinuxCatalog.h"
#include "support/JudgedHome.h"

namespace lumenary {
namespace {

using enum CleanupCandidate::Classification;
using Titles = CleanSelection::Titles;

const Date now = std::chrono::sys_days(std::chrono::year(2026) / 11 / 23);

CleanupCandidate candidate(const std::string& path, CleanupCandidate::Classification classification) {
  return {.id = UUID::random(),
          .url = {.path = path, .isFolder = true},
          .byteCount = 7,
          .reason = {},
          .consequences = "It is made again.",
          .classification = classification,
          .identity = {}};
}

TidyItem item(const std::string& title, std::int64_t bytes, TidyItem::Kind kind = TidyItem::Kind::cache) {
  return {fileEntry("/h/" + title + std::to_string(bytes), bytes), kind, title, "Because of " + title};
}

std::vector<std::string> titlesOf(const CleanSelection& selection) {
  std::vector<std::string> titles;
  for (const auto& row : selection.items()) {
    titles.push_back(row.title);
  }
  return titles;
}

TEST(CleanSelection, ProposesWhatCanGoUnasked) {
  const TidyPlan plan({item("Yarn cache", 10), item("Chrome browser cache", 99), item("pip cache", 30),
                       item("Yarn cache", 25), item("Duplicate copies", 50, TidyItem::Kind::duplicate),
                       item("Old installers", 60, TidyItem::Kind::installer),
                       item("Xcode build files", 70, TidyItem::Kind::buildFiles),
                       item("macOS leftover files", 1, TidyItem::Kind::junk)});
  const auto selection =
      CleanSelection::suggested(&plan, {}, {}, {"Chrome browser cache", "Slack cache", "Duplicate copies"}, {}, now);
  EXPECT_EQ(titlesOf(selection), (std::vector<std::string>{"Yarn cache", "pip cache", "macOS leftover files"}));
  EXPECT_EQ(selection.skippedTidyTitles, (Titles{"Chrome browser cache", "Duplicate copies", "Old installers"}));
  EXPECT_EQ(selection.busyTitles, (std::vector<std::string>{"Chrome browser cache", "Duplicate copies"}));
  const auto row = selection.items().front();
  EXPECT_EQ(row,
            (CleanSelection::Item{
                "tidy:Yarn cache", "Yarn cache", "Because of Yarn cache", 35, {"/h/Yarn cache10", "/h/Yarn cache25"}}));
}

TEST(CleanSelection, LeavesRunningAndRecentProjectsAlone) {
  const auto day = [](int ago) { return now - std::chrono::days(ago); };
  const std::vector<CleanupCandidate> candidates = {
      candidate("/c/live/node_modules", known), candidate("/c/livelier/dist", known),
      candidate("/c/old/node_modules", review), candidate("/c/new/node_modules", review),
      candidate("/c/unknown/.venv", review),    candidate("/c/odd/target", isProtected),
  };
  const DeveloperScanner::LastUsed lastUsed = {
      {"/c/old/node_modules", day(40)}, {"/c/new/node_modules", day(1)}, {"/c/odd/target", day(99)}};
  const auto selection = CleanSelection::suggested(nullptr, candidates, lastUsed, {}, {{"/c/live"}}, now);
  EXPECT_EQ(titlesOf(selection),
            (std::vector<std::string>{"livelier · Generated build files", "old · Installed packages"}));
  const auto rows = selection.items();
  EXPECT_EQ(rows[0].reason, "It is made again.");
  EXPECT_EQ(rows[1], (CleanSelection::Item{"path:/c/old/node_modules",
                                           "old · Installed packages",
                                           "Reinstall packages before running this project again.",
                                           7,
                                           {"/c/old/node_modules"}}));
  EXPECT_EQ(titlesOf(selection.excluding({"path:/c/old/node_modules", "tidy:none"})).size(), 1U);
  EXPECT_EQ(titlesOf(selection.excluding({"nothing"})), titlesOf(selection));
}

TEST(CleanSelection, FollowsUntickedGroups) {
  const TidyPlan plan({item("Yarn cache", 10), item("pip cache", 30)});
  const auto selection = CleanSelection::suggested(&plan, {}, {}, {}, {}, now).excluding({"tidy:pip cache"});
  EXPECT_EQ(titlesOf(selection), std::vector<std::string>{"Yarn cache"});
  EXPECT_EQ(selection.skippedTidyTitles, Titles{"pip cache"}) << "what is carried out goes by the titles held back";
  EXPECT_EQ(titlesOf(selection.chosen({.shown = Titles{"tidy:pip cache"}})), std::vector<std::string>());
}

TEST(CleanSelection, TakesWhatAPersonTickedAfterALookUnlessItIsInUse) {
  const TidyPlan plan({item("Yarn cache", 10), item("Copies", 30, TidyItem::Kind::duplicate), item("pip cache", 5)});
  const auto selection = CleanSelection::suggested(&plan, {}, {}, {"pip cache"}, {}, now);
  ASSERT_EQ(selection.skippedTidyTitles, (Titles{"Copies", "pip cache"}));
  EXPECT_EQ(selection.chosen({.ticked = {"Copies", "pip cache"}}).skippedTidyTitles, Titles{"pip cache"});
  EXPECT_EQ(selection.chosen({.unticked = {"tidy:Yarn cache"}, .ticked = {"Copies"}}).skippedTidyTitles,
            (Titles{"Yarn cache", "pip cache"}));
}

TEST(BusyTools, AreToldByTheProcessesThatRun) {
  const std::vector<std::pair<std::string, Titles>> cases = {
      {"", {}},
      {"/usr/bin/java org.gradle.launcher.daemon.bootstrap.GradleDaemon 8.5", {"Gradle cache", "Gradle versions"}},
      {"/Applications/Google Chrome.app/Contents/MacOS/Google Chrome", {"Chrome browser cache", "Google cache"}},
      {"/applications/google chrome.app/", {}},
      {"/Applications/Visual Studio Code.app/x", {"VS Code cache", "VS Code logs"}},
      {"node /home/anna/.npm/_npx/1/x", {"npx downloads"}},
      {"/opt/google/chrome/chrome --type=renderer", {"Chrome browser cache"}},
      {"/usr/lib/firefox-esr/firefox-esr", {"Firefox browser cache"}},
      {"/snap/firefox/4000/usr/lib/firefox/firefox", {"Firefox browser cache"}},
      {"/app/bin/x\n/usr/share/code/code --type=zygote", {"VS Code cache"}},
      {"/opt/brave.com/brave/brave", {"Brave browser cache"}},
      {"/usr/lib/slack/slack", {"Slack cache"}},
      {"vim firefox-notes.txt chrome.md", {}},
  };
  for (const auto& [processes, titles] : cases) {
    EXPECT_EQ(busyTitles(processes), titles) << processes;
  }
}

TEST(BusyTools, KnowOnlyTitlesThatThePlanCanHave) {
  std::set<std::string> titles = {"Google cache", "Codex-Runtimes cache", "Discord cache", "Slack cache",
                                  "Claude cache", "Windsurf cache"};  // of folders called after these apps
  for (const CatalogRow& row : homeRules()) {
    titles.insert(row.rule.title);
  }
  for (const LinuxRow& row : linuxRows()) {
    if (const auto* rule = std::get_if<CleanupCatalog::Rule>(&row.rule)) {
      titles.insert(rule->title);
    }
  }
  for (const InUseMarker& row : linuxInUseMarkers()) {
    EXPECT_TRUE(titles.contains(row.title)) << row.title;
  }
}

TEST(BusyTools, FindTheProgramThatAFolderIsCalledAfter) {
  const std::vector<std::string> titles = {"Spotify cache", "Gnome-Maps cache", "Slack cache", "Yarn cache", "Trash"};
  EXPECT_EQ(busyTitlesByProgram("/usr/bin/spotify --x\ngnome-maps\n/usr/bin/trash\n/usr/lib/yarn.js yarn", titles),
            (Titles{"Gnome-Maps cache", "Spotify cache"}));
  EXPECT_EQ(busyTitlesByProgram("", titles), Titles());
}

}  // namespace
}  // namespace lumenary
