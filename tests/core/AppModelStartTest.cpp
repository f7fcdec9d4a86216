#include <gtest/gtest.h>

#include <cerrno>

#include "support/ModelHome.h"

namespace lumenary {
namespace {

using namespace std::chrono_literals;
using Outcome = CleanupTransaction::Item::Outcome;

/// A home in which the program has run before: a scan of the startup disk, its history, receipts and acts are stored.
struct AppModelStart : testing::Test {
  ModelHome home;

  StorageScanResult startupScan() const {
    return {.root = AppModel::macVolumeRoot,
            .scannedAt = home.start,
            .totalBytes = 100,
            .inaccessiblePaths = {},
            .entries = {fileEntry(home.at("big"), 100)},
            .categoryByteTotals = CategoryTotals(),
            .folderByteTotals = FolderByteTotals({{"/", 100}})};
  }
  void storeEverything() {
    ASSERT_TRUE(home.store->save(startupScan()));
    home.store->appendHistory({.date = home.start, .usedBytes = 100, .categoryTotals = {}});
    home.store->appendTidy({.date = home.start, .freedBytes = 7, .lines = {"x"}});
    home.store->appendCleanupTransaction({.id = UUID::random(), .timestamp = home.start, .source = {}, .items = {}});
  }
  std::string supportFile(const std::string& name) const { return home.platform.places.support + "/" + name; }
  void damage(const std::string& name, const std::string& text) const {
    std::ofstream(supportFile(name), std::ios::binary) << text;
  }
};

TEST_F(AppModelStart, ShowsWhatWasStoredWithoutScanning) {
  storeEverything();
  AppModel& model = home.makeModel();
  EXPECT_EQ(model.volumeSnapshot->value().totalBytes, home.volumes.all.totalBytes);
  EXPECT_EQ(model.drives->size(), 1U);
  EXPECT_TRUE(model.scanHistory->empty()) << "nothing is waited for";
  home.settle();
  EXPECT_EQ(model.scanHistory->size(), 1U);
  EXPECT_EQ(model.tidyLog->size(), 1U);
  EXPECT_EQ(model.cleanupTransactions->size(), 1U);
  ASSERT_TRUE(*model.storageResult);
  EXPECT_TRUE(*model.wardrobeSnapshot && *model.closetModel && *model.tidyPlan && *model.appInventory);
  EXPECT_FALSE(*model.isScanning);
}

TEST_F(AppModelStart, AStoredScanThatIsNoUseIsNotShown) {
  struct Case {
    const char* name;
    std::function<void(StorageScanResult&)> alter;
    std::function<void(AppModel&)> meanwhile;
  };
  const std::vector<Case> cases = {
      {"of an older version", [](auto& scan) { scan.folderByteTotals.reset(); }, [](auto&) {}},
      {"a scan runs", [](auto&) {}, [&](AppModel& model) { model.scanStorage(home.url()); }},
      {"another drive was chosen", [](auto&) {}, [&](AppModel& model) { model.selectDrive(home.url()); }},
  };
  for (const Case& tried : cases) {
    SCOPED_TRACE(tried.name);
    StorageScanResult scan = startupScan();
    tried.alter(scan);
    ASSERT_TRUE(home.store->save(scan));
    AppModel& model = home.makeModel();
    tried.meanwhile(model);
    home.settle();
    EXPECT_TRUE(*model.storageResult == nullptr || (*model.storageResult)->root != AppModel::macVolumeRoot);
  }
}

TEST_F(AppModelStart, WithoutServicesNothingIsBegun) {
  storeEverything();
  AppModel& model = home.makeModel(AppModel::Services::none);
  EXPECT_TRUE(home.workers.isIdle());
  EXPECT_EQ(home.owner.timerCount(), 0U);
  EXPECT_TRUE(*model.volumeSnapshot);
}

TEST_F(AppModelStart, DamagedFilesReadAsEmptyAndOnlyTheRecordOfActsIsKept) {
  for (const std::string text : {"", "{", "[1,2", "null", "[{\"id\":\"x\"}]", "\xff\xfe", "[[[[[[[[[[[["}) {
    SCOPED_TRACE(text);
    storeEverything();
    for (const std::string& name : namesIn(home.platform.places.support)) {
      if (name.ends_with(".json")) {
        damage(name, text);
      }
    }
    std::filesystem::remove(supportFile("cleanup-transactions.unreadable.json"));
    for (const std::string& name : namesIn(home.platform.places.support)) {
      if (name.starts_with("latest-scan") && !name.ends_with(".json")) {
        damage(name, text);
      }
    }
    AppModel& model = home.makeModel();
    home.settle();
    EXPECT_TRUE(model.scanHistory->empty());
    EXPECT_TRUE(model.tidyLog->empty());
    EXPECT_TRUE(model.cleanupTransactions->empty());
    EXPECT_EQ(*model.storageResult, nullptr);
    if (!text.empty()) {
      EXPECT_EQ(contentsOf(supportFile("cleanup-transactions.unreadable.json")), text);
    }
    home.model.reset();
  }
}

TEST_F(AppModelStart, InAHomeThatCannotBeWrittenToAPersonCanStillLookAndIsToldWhyNothingGoes) {
  home.home.build({{"Documents/film", 2'000'000}, {".local/share/"}});
  AppModel& model = home.makeModel();
  home.settle();
  home.scanHome();
  std::filesystem::remove_all(home.platform.places.support);
  std::ofstream(home.platform.places.support) << "a file where the folder should be";
  home.scanHome();
  EXPECT_EQ((*model.storageResult)->entries.size(), 1U);
  const auto outcomes = home.await(
      model.removeStorageEntries({(*model.storageResult)->entries.at(0)}, CleanupTransaction::Source::storage));
  EXPECT_FALSE(outcomes.at(0).success);
  EXPECT_TRUE(standsAt(home.at("Documents/film")));
  EXPECT_EQ(model.cleanupTransactions->size(), 1U) << "what failed is on the list as long as the program runs";
  EXPECT_EQ(*model.lastTrash, std::nullopt);
}

TEST_F(AppModelStart, TwoModelsOnOneStoreLoseNothingOfEachOther) {
  home.home.build({{"Documents/a", 2'000'000}, {"Documents/b", 2'000'000}});
  AppModel& model = home.makeModel();
  home.settle();
  ScanStore otherStore(*home.platform.files, home.platform.places.support);
  AppModel other(home.platform, otherStore, home.scheduler, AppModel::Services::none);
  const auto remove = [&](AppModel& by, const std::string& name) {
    home.await(by.removeStorageEntries({fileEntry(home.at("Documents/" + name), 2'000'000)},
                                       CleanupTransaction::Source::storage));
  };
  remove(model, "a");
  remove(other, "b");
  EXPECT_EQ(home.store->loadCleanupTransactions().size(), 2U);
  EXPECT_EQ(other.cleanupTransactions->size(), 2U);
  EXPECT_EQ(model.cleanupTransactions->size(), 1U);
  // The folder of the store tells of the other's record.
  home.owner.signal(home.supportWatcher.events());
  home.advance(1s);
  EXPECT_EQ(model.cleanupTransactions->size(), 2U);
  EXPECT_EQ(home.await(model.undoTrash(model.cleanupTransactions->at(1).id)), std::nullopt);
  EXPECT_TRUE(standsAt(home.at("Documents/b")));
}

TEST_F(AppModelStart, WhatCouldNotBeWrittenStaysOnTheListUntilItIs) {
  home.home.build({{"Documents/a", 2'000'000}, {"Documents/b", 2'000'000}});
  AppModel& model = home.makeModel();
  home.settle();
  const auto remove = [&](const std::string& name) {
    home.await(model.removeStorageEntries({fileEntry(home.at("Documents/" + name), 2'000'000)},
                                          CleanupTransaction::Source::storage));
  };
  const auto reload = [&] {
    home.owner.signal(home.supportWatcher.events());
    home.advance(1s);
  };
  remove("a");
  const std::string log = supportFile("cleanup-transactions.json");
  const std::string kept = contentsOf(log);
  std::filesystem::remove(log);
  std::filesystem::create_directories(log);
  remove("b");
  home.await(model.undoTrash(model.cleanupTransactions->at(0).id));
  reload();
  ASSERT_EQ(model.cleanupTransactions->size(), 2U) << "a log that can't be read says nothing";
  EXPECT_EQ(model.cleanupTransactions->at(0).items[0].outcome, Outcome::restored);
  std::filesystem::remove(log);
  std::ofstream(log) << kept;
  reload();
  ASSERT_EQ(model.cleanupTransactions->size(), 2U);
  EXPECT_EQ(model.cleanupTransactions->at(0).items[0].outcome, Outcome::restored) << "it outranks the disk";
  // The next act finds the journals and writes all of it.
  home.await(model.undoTrash(model.cleanupTransactions->at(1).id));
  EXPECT_TRUE(standsAt(home.at("Documents/a")) && standsAt(home.at("Documents/b")));
  EXPECT_EQ(encodeCleanupTransactions(home.store->loadCleanupTransactions()),
            encodeCleanupTransactions(*model.cleanupTransactions));
}

TEST_F(AppModelStart, AnActThatAFormerProcessDiedInIsPutRightBeforeTheRecordIsShown) {
  home.home.build({{"Documents/a", 2'000'000}});
  AppModel& first = home.makeModel(AppModel::Services::none);
  std::filesystem::create_directories(supportFile("cleanup-transactions.json"));  // the record can't be written
  home.await(
      first.removeStorageEntries({fileEntry(home.at("Documents/a"), 2'000'000)}, CleanupTransaction::Source::storage));
  ASSERT_FALSE(standsAt(home.at("Documents/a")));
  EXPECT_EQ(first.cleanupTransactions->size(), 1U);
  std::filesystem::remove(supportFile("cleanup-transactions.json"));
  AppModel& second = home.makeModel();
  home.settle();
  ASSERT_EQ(second.cleanupTransactions->size(), 1U);
  EXPECT_EQ(home.await(second.undoTrash(second.cleanupTransactions->at(0).id)), std::nullopt);
  EXPECT_TRUE(standsAt(home.at("Documents/a")));
}

TEST_F(AppModelStart, TheCodeFolderOfTheLastTimeIsLookedThroughIfItIsStillThere) {
  for (const bool exists : {false, true}) {
    SCOPED_TRACE(exists);
    if (exists) {
      home.home.build({{"code/app/package.json", 10}, {"code/app/node_modules/x", 2'000'000}});
    }
    ASSERT_TRUE(home.platform.defaults->setString("codeFolder", home.at("code")));
    AppModel& model = home.makeModel();
    model.restoreCodeFolder();
    home.settle();
    EXPECT_EQ(model.projects->size(), exists ? 1U : 0U);
    EXPECT_EQ(model.cleanupCandidates->size(), exists ? 1U : 0U);
    EXPECT_EQ(home.platform.defaults->string("codeFolder"), home.at("code"));
  }
}

}  // namespace
}  // namespace lumenary
