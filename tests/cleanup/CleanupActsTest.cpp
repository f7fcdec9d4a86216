#include <gtest/gtest.h>

#include <cerrno>

#include "cleanup/CleanupActs.h"
#include "platform/linux/LinuxContentReader.h"
#include "platform/linux/LinuxDurableFiles.h"
#include "platform/linux/LinuxTrashBin.h"
#include "support/JudgedHome.h"
#include "support/LinuxTrashTest.h"

namespace lumenary {
namespace {

using Item = CleanupTransaction::Item;

/// A real home with a real Trash; a disk that is full where the test says so.
class CleanupActsTest : public LinuxTrashTest {
 protected:
  CleanupActsTest() { home.makeFolder("Documents"); }

  FileEntry file(const std::string& name) { return fileEntry(home.path("Documents/" + name), 4096); }
  CleanupActs::Done remove(const std::vector<std::string>& names) {
    std::vector<StorageMove> moves;
    for (const std::string& name : names) {
      moves.push_back({.entry = file(name)});
    }
    return acts.remove(moves, CleanupTransaction::Source::storage, judged.gate);
  }
  bool stands(const std::string& name) const { return standsAt(home.path("Documents/" + name)); }
  /// "m" moved, "f" failed, "r" restored, "e" emptied: the log on the disk, transactions apart by a blank.
  std::string recorded() {
    std::string letters;
    for (const CleanupTransaction& transaction : store.loadCleanupTransactions()) {
      letters += letters.empty() ? "" : " ";
      for (const Item& item : transaction.items) {
        letters += rawValue(item.outcome).front();
      }
    }
    return letters;
  }

  JudgedHome judged{home.places()};
  LinuxContentReader contents{reader};
  LinuxDurableFiles files{kernel};
  ScanStore store{files, home.places().support};
  MadeMounts mounts;
  LinuxTrashBin bin{kernel, reader, mounts, places, 1};
  Date now = moved;
  CleanupActs acts{{.reader = reader,
                    .contents = contents,
                    .mountTable = mounts,
                    .places = places,
                    .trash = trash,
                    .files = files,
                    .store = store,
                    .now = [this] { return now; }}};
};

TEST_F(CleanupActsTest, AnActIsOneRecordFailuresIncludedAndCanBeTakenBackAndDoneAgain) {
  home.write("Documents/a");
  home.write("Documents/c");
  const auto done = remove({"a", "gone", "c"});
  ASSERT_TRUE(done.transaction);
  EXPECT_EQ(recorded(), "mfm");
  EXPECT_EQ(done.log.size(), 1U);
  EXPECT_EQ(done.transaction->items[0].ruleID, "storage.Personal Files");
  EXPECT_FALSE(stands("a"));

  const auto undone = acts.undo(done.transaction->id, {});
  EXPECT_EQ(undone.failure, std::nullopt);
  EXPECT_EQ(recorded(), "rfr");
  EXPECT_TRUE(stands("a") && stands("c"));

  const auto again = acts.redo(done.transaction->id, undone.putBack);
  EXPECT_EQ(recorded(), "rfr mm");
  EXPECT_FALSE(stands("a") || stands("c"));
  ASSERT_TRUE(again.transaction);
  EXPECT_EQ(acts.undo(again.transaction->id, {}).failure, std::nullopt);
  EXPECT_EQ(recorded(), "rfr rr");
}

TEST_F(CleanupActsTest, WhatCameToAPlaceSinceIsNotMovedAgain) {
  home.write("Documents/a");
  home.write("Documents/b");
  const auto done = remove({"a", "b"});
  const auto undone = acts.undo(done.transaction->id, {});
  std::filesystem::rename(home.path("Documents/a"), home.path("Documents/kept"));
  home.write("Documents/a", "another");
  acts.redo(done.transaction->id, undone.putBack);
  EXPECT_EQ(recorded(), "rr fm");
  EXPECT_EQ(contentsOf(home.path("Documents/a")), "another");
  acts.redo(done.transaction->id, {});
  EXPECT_EQ(recorded(), "rr fm ff") << "nothing is known of what stands there";
}

TEST_F(CleanupActsTest, NothingAskedForIsNoRecord) {
  EXPECT_FALSE(remove({}).transaction);
  EXPECT_FALSE(acts.clean({}).transaction);
  EXPECT_FALSE(acts.redo(UUID::random(), {}).transaction);
  EXPECT_FALSE(acts.merge({}).transaction);
  EXPECT_EQ(recorded(), "");
}

TEST_F(CleanupActsTest, SeveralActsBecomeOneAndComeBackTogether) {
  home.write("Documents/a");
  home.write("Documents/b");
  home.write("Documents/other");
  const UUID first = remove({"a"}).transaction->id;
  remove({"other"});
  const UUID second = remove({"b"}).transaction->id;
  const auto merged = acts.merge(std::vector{first, second});
  ASSERT_TRUE(merged.transaction);
  EXPECT_EQ(recorded(), "m mm");
  EXPECT_EQ(acts.undo(merged.transaction->id, {}).failure, std::nullopt);
  EXPECT_TRUE(stands("a") && stands("b"));
  EXPECT_FALSE(stands("other"));
  EXPECT_FALSE(acts.merge(std::vector{first}).transaction) << "it isn't on record any more";
}

TEST_F(CleanupActsTest, AnActThatTheFullDiskKeptOutOfTheLogCanBeTakenBack) {
  home.write("Documents/a");
  std::filesystem::create_directory(home.places().support + "/cleanup-transactions.json");  // can't be written over
  const auto done = remove({"a"});
  EXPECT_FALSE(done.isSaved);
  ASSERT_EQ(done.log.size(), 1U);
  EXPECT_EQ(acts.undo(done.transaction->id, {}).failure, "Nothing to undo.");
  EXPECT_EQ(acts.undo(done.transaction->id, done.log).failure, std::nullopt);
  EXPECT_TRUE(stands("a"));
}

TEST_F(CleanupActsTest, EmptyingTellsWhatIsGoneAndWhatSomebodyPutBack) {
  home.write("Documents/a");
  home.write("Documents/b");
  const auto done = remove({"a", "b"});
  std::filesystem::rename(done.transaction->items[1].trashURL->path, home.path("Documents/b"));
  EXPECT_EQ(acts.empty(bin, {}, {}).result.kind, TrashEmptyResult::Kind::emptied);
  EXPECT_EQ(recorded(), "er");
  EXPECT_EQ(acts.empty(bin, {}, {}).result.kind, TrashEmptyResult::Kind::alreadyEmpty);
}

}  // namespace
}  // namespace lumenary
