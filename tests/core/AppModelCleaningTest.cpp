#include <gtest/gtest.h>

#include "support/ModelHome.h"

namespace lumenary {
namespace {

using namespace std::chrono_literals;
using Source = CleanupTransaction::Source;
using Outcome = CleanupTransaction::Item::Outcome;

constexpr int mebibyte = 1'048'576;

struct AppModelCleaning : testing::Test {
  ModelHome home;
  AppModel& model = home.makeModel(AppModel::Services::none);

  AppModelCleaning() {
    home.home.build({{"Documents/film.mkv", 3 * mebibyte},
                     {"Documents/talk.mkv", 2 * mebibyte},
                     {".cache/pip/http/x", 60 * mebibyte},
                     {"code/app/package.json", 10},
                     {"code/app/node_modules/a/index.js", 2 * mebibyte}});
    home.scanHome();
  }
  FileEntry scanned(const std::string& relative) {
    for (const FileEntry& entry : (*model.storageResult)->entries) {
      if (entry.url.path == home.at(relative)) {
        return entry;
      }
    }
    return fileEntry(home.at(relative));
  }
  bool stands(const std::string& relative) const { return standsAt(home.at(relative)); }
  std::vector<CleanupOutcome> remove(const std::vector<std::string>& paths) {
    std::vector<FileEntry> entries;
    for (const std::string& path : paths) {
      entries.push_back(scanned(path));
    }
    return home.await(model.removeStorageEntries(std::move(entries), Source::storage));
  }
  std::int64_t total() const { return (*model.storageResult)->totalBytes; }
  void findProjects() {
    model.scanDeveloperProjects({.path = home.at("code"), .isFolder = true});
    home.settle();
  }
  /// "storage mf": the source and the outcomes of each transaction.
  std::vector<std::string> record() const {
    std::vector<std::string> lines;
    for (const CleanupTransaction& transaction : *model.cleanupTransactions) {
      std::string line = std::string(rawValue(transaction.source)) + " ";
      for (const auto& item : transaction.items) {
        line += rawValue(item.outcome).front();
      }
      lines.push_back(line);
    }
    return lines;
  }
};

using Lines = std::vector<std::string>;

TEST_F(AppModelCleaning, WhatGoesIsRecordedTakenOffTheScanAndCanBeTakenBack) {
  const std::int64_t before = total();
  const auto revised = *model.storageResult;
  const auto outcomes = remove({"Documents/film.mkv", "Documents/gone"});
  EXPECT_TRUE(outcomes[0].success);
  EXPECT_FALSE(outcomes[1].success);
  EXPECT_FALSE(stands("Documents/film.mkv"));
  EXPECT_EQ(record(), Lines{"storage mf"});
  EXPECT_EQ(total(), before - 3 * mebibyte);
  EXPECT_EQ(home.store->load(home.home.root()).value()->totalBytes, total()) << "the patched scan is stored";
  EXPECT_EQ(*model.closetModel, nullptr) << "what was derived from the former numbers is gone";
  ASSERT_TRUE(*model.lastTrash);
  EXPECT_EQ((*model.lastTrash)->count, 1U);
  EXPECT_EQ((*model.lastTrash)->bytes, 3 * mebibyte);

  EXPECT_EQ(home.await(model.undoTrash((*model.lastTrash)->transactionID)), std::nullopt);
  EXPECT_TRUE(stands("Documents/film.mkv"));
  EXPECT_EQ(record(), Lines{"storage rf"});
  EXPECT_EQ(*model.lastTrash, std::nullopt);
  EXPECT_EQ(home.await(model.undoTrash(model.cleanupTransactions->at(0).id)), std::nullopt)
      << "nothing is left to undo";
  EXPECT_EQ(home.await(model.undoTrash(UUID::random())), "Nothing to undo.");
}

TEST_F(AppModelCleaning, UndoAndRedoGoBackAndForth) {
  remove({"Documents/film.mkv"});
  EXPECT_EQ(model.undoManager().undoActionName(), "Move to Trash");
  for (int round = 0; round < 3; ++round) {
    SCOPED_TRACE(round);
    model.undoManager().undo();
    home.settle();
    EXPECT_TRUE(stands("Documents/film.mkv"));
    EXPECT_EQ(model.undoManager().redoActionName(), "Move to Trash");
    model.undoManager().redo();
    home.settle();
    EXPECT_FALSE(stands("Documents/film.mkv"));
  }
  EXPECT_EQ(record(), (Lines{"storage r", "storage r", "storage r", "storage m"}));
}

TEST_F(AppModelCleaning, AnOccupiedPlaceKeepsTheItemInTheTrashUntilItIsFree) {
  remove({"Documents/film.mkv", "Documents/talk.mkv"});
  EXPECT_EQ(model.undoManager().undoActionName(), "Move 2 Items to Trash");
  home.home.write("Documents/film.mkv", "another");
  model.undoManager().undo();
  home.settle();
  EXPECT_EQ(*model.actionNotice, "1 item couldn't go back. The original destination is already occupied.");
  EXPECT_EQ(record(), Lines{"storage mr"});
  EXPECT_EQ(contentsOf(home.at("Documents/film.mkv")), "another");
  std::filesystem::remove(home.at("Documents/film.mkv"));
  const CleanupTransaction& transaction = model.cleanupTransactions->at(0);
  EXPECT_EQ(home.await(model.restoreCleanupItem(transaction.id, transaction.items[0].id)), std::nullopt);
  EXPECT_EQ(record(), Lines{"storage rr"});
}

TEST_F(AppModelCleaning, ATidyRunsThePlanAndKeepsAReceipt) {
  ASSERT_TRUE(*model.tidyPlan);
  const auto receipt = home.await(model.runTidy(false, true, {}));
  ASSERT_TRUE(receipt);
  EXPECT_EQ(receipt->freedBytes, 60 * mebibyte);
  EXPECT_EQ(model.tidyLog->size(), 1U);
  EXPECT_FALSE(*model.isTidying);
  EXPECT_FALSE(stands(".cache/pip"));
  EXPECT_TRUE(stands("code/app/node_modules")) << "build files go by their own way";
  EXPECT_EQ(home.await(model.runTidy(false, true, {})), std::nullopt) << "nothing is left";
  EXPECT_EQ(record(), Lines{"tidy m"});
}

TEST_F(AppModelCleaning, OnePressOverSeveralSourcesIsOneUndo) {
  findProjects();
  ASSERT_EQ(model.cleanupCandidates->size(), 1U);
  EXPECT_EQ(home.await(model.clear(true, {}, {}, *model.cleanupCandidates)), 0U);
  EXPECT_EQ(record(), Lines{"tidy mm"});
  EXPECT_TRUE(model.cleanupCandidates->empty());
  EXPECT_EQ(home.store->loadCleanupTransactions(), *model.cleanupTransactions);
  model.undoManager().undo();
  home.settle();
  EXPECT_TRUE(stands(".cache/pip") && stands("code/app/node_modules"));
  EXPECT_EQ(model.undoManager().undoActionName(), std::nullopt) << "its parts are no acts of their own";
}

TEST_F(AppModelCleaning, WhereTheRecordOfOnePressCannotBeWrittenOneUndoStillTakesAllBack) {
  findProjects();
  const std::string log = home.platform.places.support + "/cleanup-transactions.json";
  std::filesystem::create_directories(log);
  EXPECT_EQ(home.await(model.clear(true, {}, {}, *model.cleanupCandidates)), 0U);
  EXPECT_EQ(record(), (Lines{"tidy m", "buildCleanup m"}));
  EXPECT_EQ((*model.lastTrash)->count, 2U);
  home.await(model.refreshBusyTools());
  model.undoManager().undo();
  home.settle();
  EXPECT_TRUE(stands(".cache/pip") && stands("code/app/node_modules"));
  EXPECT_EQ(record(), (Lines{"tidy r", "buildCleanup r"}));
}

TEST_F(AppModelCleaning, TheUndoIsOfferedBeforeTheLongWorkThatFollows) {
  std::vector<FileEntry> entries{scanned("Documents/film.mkv")};
  model.run([](AppModel& of, std::vector<FileEntry> moved) -> Task<> {
    co_await of.removeStorageEntries(std::move(moved), Source::storage);
  }(model, entries));
  home.workers.runOne(Lane::acts);
  home.owner.runAll();
  ASSERT_EQ(home.workers.waitingIn(Lane::interactive), 1U) << "the scan isn't patched yet";
  EXPECT_TRUE(*model.lastTrash);
  home.settle();
}

TEST_F(AppModelCleaning, ATidyOfAnotherScanIsNotCarriedOut) {
  model.run([](AppModel& of) -> Task<> { co_await of.runTidy(true, false, {}); }(model));
  model.selectDrive({.path = home.at("code"), .isFolder = true});
  home.settle();
  EXPECT_TRUE(stands(".cache/pip"));
  EXPECT_FALSE(*model.isTidying);
}

TEST_F(AppModelCleaning, WhatLiesOutsideOfTheScanLeavesItAsItIs) {
  model.scanStorage({.path = home.at("code"), .isFolder = true});
  home.settle();
  const auto scan = *model.storageResult;
  home.await(model.moveAppItemsToTrash({fileEntry(home.at("Documents/film.mkv"), 3 * mebibyte)}));
  EXPECT_EQ(record(), Lines{"apps m"});
  EXPECT_EQ(*model.storageResult, scan);
}

TEST_F(AppModelCleaning, WithOneSourceItKeepsItsOwnRecordAndFailuresAreCounted) {
  findProjects();
  std::vector<CleanupCandidate> candidates = *model.cleanupCandidates;
  candidates.push_back(candidates[0]);
  candidates[1].url.path = home.at("code/app/gone");
  EXPECT_EQ(home.await(model.clear(false, {}, {}, candidates)), 1U);
  EXPECT_EQ(record(), Lines{"buildCleanup mf"});
  EXPECT_EQ(home.await(model.clear(false, {}, {}, {})), 0U);
  EXPECT_EQ(record(), Lines{"buildCleanup mf"});
}

TEST_F(AppModelCleaning, WhatIsInUseOrHasGoneIsNotTriedByOnePress) {
  home.home.build({{"code/app/dist/x.js", 2 * mebibyte}, {".gradle/caches/x", 60 * mebibyte}});
  for (const char* const path : {"dist", "node_modules", "package.json", ""}) {
    std::filesystem::last_write_time(home.at(std::string("code/app/") + path),
                                     std::filesystem::file_time_type::clock::now() - 1000h);
  }
  home.scanHome();
  findProjects();
  home.await(model.measureLastUsed());
  ASSERT_EQ(model.suggestedClear().candidates.size(), 2U);
  ASSERT_EQ(model.suggestedClear().tidyGroups.size(), 2U);
  home.processes.next.processes.push_back({.pid = 9, .appPath = "/usr/bin/java"});
  home.processes.running[9] = {.arguments = {"/usr/bin/java", "org.gradle.launcher.daemon.bootstrap.GradleDaemon"}};
  std::filesystem::remove_all(home.at("code/app/node_modules"));
  EXPECT_EQ(home.await(model.clearSuggested({})), 0U);
  EXPECT_EQ(record(), Lines{"tidy mm"}) << "the one that was gone wasn't tried";
  EXPECT_TRUE(stands(".gradle/caches"));
  EXPECT_FALSE(stands("code/app/dist") || stands(".cache/pip"));
}

TEST_F(AppModelCleaning, WhatAPersonUntickedOrHasNotSeenStaysAtOnePress) {
  home.home.build({{".gradle/caches/x", 60 * mebibyte}});
  home.scanHome();
  const auto rows = model.suggestedClear().items();
  ASSERT_EQ(rows.size(), 2U);
  const auto pip = std::ranges::find(rows, home.at(".cache/pip"), [](const auto& row) { return row.paths.front(); });
  ASSERT_NE(pip, rows.end());
  EXPECT_EQ(home.await(model.clearChosen({.unticked = {pip->id}, .shown = CleanSelection::Titles{pip->id}})), 0U);
  EXPECT_EQ(record(), Lines{});
  EXPECT_EQ(home.await(model.clearSuggested({pip->id})), 0U);
  EXPECT_TRUE(stands(".cache/pip"));
  EXPECT_FALSE(stands(".gradle/caches"));
}

TEST_F(AppModelCleaning, EmptyingTheTrashIsWrittenDownAndCounted) {
  remove({"Documents/film.mkv"});
  model.refreshTrashSize();
  home.settle();
  EXPECT_EQ(*model.trashBytes, 3 * mebibyte);
  EXPECT_EQ(home.await(model.emptyTrash()).kind, TrashEmptyResult::Kind::emptied);
  EXPECT_EQ(record(), Lines{"storage e"});
  EXPECT_EQ(model.confirmedReclaimedBytes(), 3 * mebibyte);
  EXPECT_EQ(*model.trashBytes, 0);
  model.undoManager().undo();
  home.settle();
  EXPECT_EQ(record(), Lines{"storage e"});
}

TEST_F(AppModelCleaning, TheTrashEmptiedBySomebodyElseDuringAnUndoLosesNothingThatIsLeft) {
  remove({"Documents/film.mkv", "Documents/talk.mkv"});
  const auto gone = model.cleanupTransactions->at(0).items[0].trashURL->path;
  home.kernel.beforeCall = [&](std::string_view call) {
    if (call.starts_with("rename")) {
      std::filesystem::remove(gone);
    }
  };
  const auto failure = home.await(model.undoTrash(model.cleanupTransactions->at(0).id));
  home.kernel.beforeCall = {};
  ASSERT_TRUE(failure);
  EXPECT_TRUE(failure->starts_with("1 item couldn't go back.")) << *failure;
  EXPECT_TRUE(stands("Documents/talk.mkv"));
}

TEST_F(AppModelCleaning, AutoClearRunsAtItsBordersAndNotBefore) {
  struct Case {
    const char* name;
    std::string setting;
    std::int64_t available;
    std::chrono::seconds sinceLast;
    std::chrono::seconds sinceScan;
    bool runs;
    bool scans;
    int megabytes = 60;
  };
  constexpr std::int64_t total = 1'000'000;
  const std::vector<Case> cases = {
      {"off", "off", 0, 9'000'000s, 10s, false, false},
      {"an unknown word", "daily", 0, 9'000'000s, 10s, false, false},
      {"weekly, a week ago", "weekly", 0, 604'800s, 10s, false, false},
      {"weekly, more than a week ago", "weekly", 0, 604'801s, 10s, true, false},
      {"weekly, but the scan is of yesterday", "weekly", 0, 604'801s, 86'400s, false, true},
      {"little room, a day ago", "lowSpace", 99'999, 86'400s, 10s, false, false},
      {"little room, more than a day ago", "lowSpace", 99'999, 86'401s, 86'399s, true, false},
      {"a tenth is room enough", "lowSpace", 100'000, 86'401s, 10s, false, false},
      {"enough to be told of", "weekly", 0, 604'801s, 10s, true, false, 110},
      {"the last one is told as ahead of now", "weekly", 0, -100s, 10s, true, false},
  };
  for (const Case& tried : cases) {
    SCOPED_TRACE(tried.name);
    ModelHome clean;
    clean.home.build({{".cache/pip/http/x", tried.megabytes * mebibyte}});
    const auto defaults = [&](const std::string& key, const std::string& value) {
      ASSERT_TRUE(clean.platform.defaults->setString(key, value));
    };
    defaults("autoTidy", tried.setting);
    // A stored scan of the startup disk that holds what stands in the made home.
    auto scan = StorageScanner(clean.real, clean.mounts, clean.platform.places, clean.platform.now, 2)
                    .scan(clean.home.root())
                    .value();
    scan.root = AppModel::macVolumeRoot;
    scan.scannedAt = clean.start;
    ASSERT_TRUE(clean.store->save(scan));
    clean.volumes.all = {.totalBytes = total, .availableBytes = tried.available};
    AppModel& model = clean.makeModel();
    clean.settle();
    ASSERT_TRUE(*model.storageResult);
    clean.owner.advance(tried.sinceScan);
    defaults("lastAutoTidy", iso8601(std::chrono::floor<std::chrono::seconds>(clean.now()) - tried.sinceLast));
    model.monitoringCoordinator().start();
    // A scan of the real machine must not begin here: its work is left undone.
    while (!*model.isScanning && !clean.workers.isIdle()) {
      clean.workers.runOne();
      clean.owner.runAll();
    }
    EXPECT_EQ(*model.isScanning, tried.scans);
    EXPECT_EQ(!standsAt(clean.at(".cache/pip")), tried.runs);
    EXPECT_EQ(model.tidyLog->size(), tried.runs ? 1U : 0U);
    const bool isTold = tried.megabytes >= 100 && tried.runs;
    EXPECT_EQ(clean.desktop.notes,
              isTold ? Lines{"auto-tidy: Tidied Up / Auto-clear moved 115.3 MB to the Trash"} : Lines{});
  }
}

}  // namespace
}  // namespace lumenary
