#include <gtest/gtest.h>

#include <functional>
#include <map>

#include "cleanup/ItemEvidence.h"
#include "support/JudgedHome.h"
#include "support/MadeApps.h"
#include "support/TimeZone.h"

namespace lumenary {
namespace {

using Call = ItemEvidence::Call;
using Tone = ItemEvidence::Tone;
using Fact = ItemEvidence::Fact;
using Verdict = CleanupCatalog::Verdict;

const Date now = *parseISO8601("2026-11-22T12:00:00Z");

class MadeMetadata final : public FileMetadata {
 public:
  std::map<std::string, Date> opened;
  std::map<std::string, std::string> hosts;
  mutable std::size_t asked = 0;

  std::optional<Date> lastOpened(std::span<const std::string> paths) const override {
    asked += paths.size();
    std::optional<Date> newest;
    for (const std::string& path : paths) {
      const auto found = opened.find(path);
      newest = found == opened.end() ? newest : std::max(newest.value_or(found->second), found->second);
    }
    return newest;
  }
  std::optional<std::string> downloadedFrom(const std::string& path) const override {
    const auto found = hosts.find(path);
    return found == hosts.end() ? std::nullopt : std::optional(found->second);
  }
};

/// A home on the disk, and what is known about the things in it.
struct EvidenceHome {
  ItemEvidence gather(std::vector<std::string> paths, std::optional<std::int64_t> bytes = {},
                      std::optional<bool> canTrash = {}) const {
    for (std::string& path : paths) {
      path = judged.at(path);
    }
    return ItemEvidence::gather({judged.reader, apps, judged.catalog, metadata, judged.places}, paths, bytes, canTrash,
                                now);
  }

  TemporaryHome home;
  JudgedHome judged{home.places()};
  MadeApps apps{{.path = "/a/Foo.app", .id = "com.foo.app", .name = "Foo"}};
  MadeMetadata metadata;
};

std::string valueOf(const ItemEvidence& evidence, std::string_view label) {
  const auto found = std::ranges::find(evidence.facts, label, &Fact::label);
  return found == evidence.facts.end() ? "" : found->value;
}

TEST(ItemEvidence, FollowsFromWhatWasFoundInOrder) {
  const CleanupCatalog::Rule keep{"K", "Maker", "What it is.", Verdict::keep, "Gone."};
  const CleanupCatalog::Rule review{"R", "Maker", "What it is.", Verdict::review, "Gone."};
  const CleanupCatalog::Rule rebuildable{"B", "Maker", "What it is.", Verdict::rebuildable, "Gone."};
  const ItemOwner installed{.name = "Foo", .isInstalled = true};
  const ItemOwner gone{.name = "Foo", .isInstalled = false, .isIdentifier = true};
  const ItemOwner helper{.name = "Foo", .isInstalled = false, .isIdentifier = true, .isMakersHelper = true};
  const InstallerTarget had{"Foo", true};
  const UseDate longAgo{.date = now - std::chrono::days(800), .isOpened = true};
  const UseDate changed{.date = now - std::chrono::days(800)};
  const UseDate aYear{.date = now - std::chrono::days(365), .isOpened = true};
  struct Case {
    std::string name;
    std::function<void(EvidenceFindings&)> set;
    Call call;
    std::string headline;
  };
  const std::string unknown = "Look first. Hearthkeep doesn't recognise this, so here's everything it can tell.";
  const std::string cache = "Safe to clear: a cache. The app that made it rebuilds what it needs.";
  const std::string left =
      "Left by Foo, which is no longer on this Mac. Usually safe once you're sure you don't need its saved data.";
  const std::vector<Case> cases = {
      {"nothing", [](auto&) {}, Call::lookFirst, unknown},
      {"protected", [&](auto& f) { f.canTrash = false, f.installer = had; }, Call::keep,
       "Keep. macOS or an app manages this, so Hearthkeep leaves it alone."},
      {"protected, known", [&](auto& f) { f.canTrash = false, f.rule = &rebuildable; }, Call::keep,
       "Keep. What it is."},
      {"kept, though an installer", [&](auto& f) { f.rule = &keep, f.installer = had; }, Call::keep,
       "Keep. What it is."},
      {"installer of what is there", [&](auto& f) { f.rule = &review, f.installer = had; }, Call::safe,
       "Safe to remove: an installer for Foo, which you already have."},
      {"rebuildable", [&](auto& f) { f.rule = &rebuildable, f.owner = gone; }, Call::safe,
       "Safe to clear. What it is."},
      {"review", [&](auto& f) { f.rule = &review, f.isApp = true; }, Call::lookFirst, "Look first. What it is."},
      {"app", [&](auto& f) { f.isApp = true; }, Call::lookFirst, "Look first: removing an app uninstalls it."},
      {"gone owner before cache", [&](auto& f) { f.owner = gone, f.isCache = true; }, Call::lookFirst, left},
      {"helper", [&](auto& f) { f.owner = helper; }, Call::lookFirst, unknown},
      {"cache", [&](auto& f) { f.isCache = true, f.lastUse = longAgo; }, Call::safe, cache},
      {"not opened", [&](auto& f) { f.lastUse = longAgo, f.owner = installed; }, Call::lookFirst,
       "Look first: you haven't opened this in 2 years."},
      {"not changed", [&](auto& f) { f.lastUse = changed; }, Call::lookFirst, unknown},
      {"opened a year ago to the second", [&](auto& f) { f.lastUse = aYear; }, Call::lookFirst, unknown},
      {"installed owner", [&](auto& f) { f.owner = installed; }, Call::lookFirst,
       "Look first: Foo keeps data here. Removing it can reset the app."},
  };
  for (const Case& each : cases) {
    EvidenceFindings findings{.path = "/x/y"};
    each.set(findings);
    const ItemEvidence evidence = evidenceOf(findings, now);
    EXPECT_EQ(evidence.call, each.call) << each.name;
    EXPECT_EQ(evidence.headline, each.headline) << each.name;
  }
}

TEST(ItemEvidence, TellsWhatFollowsAndWhoMadeIt) {
  const ItemOwner gone{.name = "Foo", .isInstalled = false, .isIdentifier = true};
  struct Case {
    EvidenceFindings found;
    std::optional<Fact> madeBy;
    std::optional<Fact> ifRemoved;
  };
  const std::string what = "What it is";
  const std::string maker = "Made by";
  const Fact rebuilds{"exclamationmark.circle", "If removed",
                      "The app rebuilds it. It may start a little slower the first time.", Tone::good};
  const Fact resets{"exclamationmark.circle", "If removed",
                    "The app may reset or lose data it keeps here. Quit it first.", Tone::caution};
  const std::vector<Case> cases = {
      {{.path = "/Applications/Foo.app", .isApp = true},
       Fact{"app", what, "The app itself. Removing it uninstalls Foo."},
       Fact{"exclamationmark.circle", "If removed",
            "The app is gone. Its settings stay in Library until you clear them too.", Tone::caution}},
      {{.path = "/h/Library/Caches/Foo", .isCache = true, .owner = gone},
       Fact{"app.dashed", maker, "Foo · no longer on this Mac", Tone::good},
       rebuilds},
      {{.path = "/h/Library/Logs/Foo", .owner = gone},
       Fact{"app.dashed", maker, "Foo · no longer on this Mac", Tone::good},
       Fact{"exclamationmark.circle", "If removed",
            "Nothing breaks: the app is already gone. You lose any settings or saved data it left.", Tone::good}},
      {{.path = "/h/Library/Logs/Foo", .owner = ItemOwner{.name = "Foo", .isInstalled = true}},
       Fact{"app.badge.checkmark", maker, "Foo · still installed"},
       resets},
      {{.path = "/h/Library/Logs/Foo",
        .owner = ItemOwner{.name = "Foo", .isInstalled = false, .isIdentifier = true, .isMakersHelper = true}},
       Fact{"app.connected.to.app.below.fill", maker, "Foo · a helper from a maker whose apps are installed"},
       resets},
      {{.path = "/h/.config/Foo", .owner = ItemOwner{.name = "Foo", .isInstalled = false}},
       Fact{"questionmark.app", maker, "Probably Foo (no matching app found)"},
       std::nullopt},
      {{.path = "/h/x.dmg", .owner = gone, .installer = InstallerTarget{"Foo", false}},
       std::nullopt,
       Fact{"exclamationmark.circle", "If removed",
            "Nothing breaks: the app is already gone. You lose any settings or saved data it left.", Tone::good}},
  };
  for (const Case& each : cases) {
    std::vector<Fact> expected;
    if (each.madeBy) {
      expected.push_back(*each.madeBy);
    }
    if (each.ifRemoved) {
      expected.push_back(*each.ifRemoved);
    }
    std::vector<Fact> facts = evidenceOf(each.found, now).facts;
    std::erase_if(facts, [](const Fact& fact) { return fact.label == "Where" || fact.label == "Installer"; });
    EXPECT_EQ(facts, expected) << each.found.path;
  }
}

TEST(ItemEvidence, ListsTheFactsInTheirOrder) {
  const TimeZone zone(centralEurope);
  EvidenceHome home;
  home.home.write("Downloads/Foo-2.1.dmg");
  const std::string image = home.judged.at("~/Downloads/Foo-2.1.dmg");
  home.metadata.opened[image] = *parseISO8601("2026-10-20T20:05:00Z");
  home.metadata.hosts[image] = "example.org";
  const ItemEvidence evidence = home.gather({"~/Downloads/Foo-2.1.dmg", "~/x"}, 1'500'000, true);
  EXPECT_EQ(evidence.call, Call::safe);
  EXPECT_EQ(
      evidence.facts,
      (std::vector<Fact>{
          {"square.stack", "Contains", "2 items · 1.5 MB"},
          {"clock", "Last opened", "1 month ago · Oct 20, 2026 at 10:05 PM"},
          {"arrow.down.circle", "Came from", "example.org"},
          {"shippingbox", "Installer", "For Foo, which is already in Applications."},
          {"mappin.and.ellipse", "Where", "~/Downloads"},
          {"exclamationmark.circle", "If removed", "Download it again from the maker's site if you ever need it."},
          {"arrow.uturn.backward", "Undo",
           "Goes to the Trash first. Put it back from Recently Cleared until you empty the Trash.", Tone::good},
      }));
  EXPECT_EQ(home.gather({}).headline, "Nothing to inspect.");
}

TEST(ItemEvidence, SaysWhatComesBack) {
  const EvidenceHome home;
  const ItemEvidence pip = home.gather({"~/.cache/go-build"}, {}, false);
  EXPECT_EQ(valueOf(pip, "Comes back?"), "Yes. Go makes it again as you use it.");
  EXPECT_EQ(valueOf(pip, "Better way"), "go clean -cache does the same.");
  EXPECT_EQ(valueOf(pip, "Protected"), "Hearthkeep won't move this. Reveal it in Finder if you want to look.");
  const ItemEvidence image = home.gather({"~/Downloads/some.iso"});
  EXPECT_EQ(image.call, Call::safe);
  EXPECT_EQ(valueOf(image, "Made by"), "You downloaded it");
  EXPECT_EQ(valueOf(image, "Comes back?"), "");
}

TEST(ItemEvidence, CallsNoFolderACacheThatHoldsMore) {
  const EvidenceHome home;
  EXPECT_EQ(home.gather({"/home/other/.cache/foo"}).call, Call::safe);
  EXPECT_EQ(home.gather({"~/.cache/pypoetry"}).call, Call::lookFirst) << "it holds environments";
  EXPECT_EQ(home.gather({"~/.cache/pypoetry/virtualenvs"}).call, Call::lookFirst);
}

TEST(ItemEvidence, AsksTheFirstTwelveWhenTheyWereUsed) {
  EvidenceHome home;
  std::vector<std::string> paths;
  for (int index = 0; index < 13; ++index) {
    paths.push_back("~/f" + std::to_string(index));
  }
  home.metadata.opened[home.judged.at("~/f12")] = now;
  const ItemEvidence evidence = home.gather(paths);
  EXPECT_EQ(valueOf(evidence, "Contains"), "13 items");
  EXPECT_EQ(home.metadata.asked, 12U);
  EXPECT_EQ(valueOf(evidence, "Last opened"), "");
}

TEST(UseDate, OfAFolderIsTheNewestOfWhatStandsInIt) {
  const auto day = [](int days) { return now - std::chrono::days(days); };
  TemporaryTree tree;
  tree.build({{"a/b/c/new", 1, day(3)},
              {"a/old", 1, day(50)},
              {"outside/today", 1, day(0)},
              {"a/link", LinkTo{"../outside"}},
              {"a/Some.app/today", 1, day(0)}});
  for (const std::string_view path : {"a/link", "a/Some.app", "a/b/c", "a/b", "a"}) {
    tree.setModified(path, day(60));
  }
  const LinuxFileReader reader;
  const std::vector<std::string> folder = {tree.path("a")};
  EXPECT_EQ(lastChangeBelow(reader, folder), (UseDate{.date = day(3)}));

  for (std::size_t index = 0; index < useEntryLimit; ++index) {
    tree.build({{"a/b/" + std::to_string(index), day(40)}});
  }
  tree.setModified("a/b", day(60));
  EXPECT_EQ(lastChangeBelow(reader, folder), (UseDate{.date = day(40)})) << "the rest is beyond the limit";
  EXPECT_EQ(lastChangeBelow(reader, std::vector{tree.path("absent")}), std::nullopt);
}

TEST(UseDate, EndsInEndlessFoldersAndMakesDoWithoutNotes) {
  TemporaryTree tree;
  tree.buildChain(300, {{"x", 1}});
  tree.setAllModified("", now - std::chrono::days(9));
  const LinuxFileReader reader;
  EXPECT_EQ(lastChangeBelow(reader, std::vector{tree.root()}), (UseDate{.date = now - std::chrono::days(9)}));
  EXPECT_EQ(lastUseOfFiles(reader, MadeMetadata(), std::vector{tree.path("d/x"), tree.path("none")}),
            (UseDate{.date = now - std::chrono::days(9)}));
}

}  // namespace
}  // namespace lumenary
