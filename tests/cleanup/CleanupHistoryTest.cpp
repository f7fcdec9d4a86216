#include <gtest/gtest.h>

#include <algorithm>

#include "cleanup/CleanupHistory.h"
#include "cleanup/CleanupRecovery.h"
#include "support/FakeFiles.h"
#include "support/FakeTrash.h"

namespace lumenary {
namespace {

using Item = CleanupTransaction::Item;
using Outcome = Item::Outcome;

const std::string logPath = "/support/cleanup-transactions.json";

UUID identity(int number) { return {.bytes = {static_cast<std::uint8_t>(number)}}; }

Outcome outcomeOf(char letter) {
  return letter == 'm'   ? Outcome::movedToTrash
         : letter == 'f' ? Outcome::failed
         : letter == 'r' ? Outcome::restored
                         : Outcome::emptied;
}

/// One transaction of the items 1, 2, 3, ... on record, a letter an item: (m)oved, and in the Trash, (f)ailed,
/// (r)estored, (e)mptied.
struct Cleaned {
  FakeFiles files;
  FakeTrash trash;
  ScanStore store{files, "/support"};
  CleanupHistory history{files, store, trash};

  explicit Cleaned(const std::string& letters) {
    CleanupTransaction act{.id = identity(100), .timestamp = {}, .source = {}, .items = {}};
    for (int number = 1; const char letter : letters) {
      const std::string name = std::to_string(number);
      act.items.push_back({.id = identity(number++),
                           .originalURL = {.path = "/code/" + name},
                           .trashURL = FileURL{.path = FakeTrash::placeOf(name)},
                           .ruleID = "tidy.Developer",
                           .outcome = outcomeOf(letter),
                           .message = {}});
      if (letter == 'm') {
        trash.standing.insert(FakeTrash::placeOf(name));
      }
    }
    store.appendCleanupTransaction(act);
    history.load();
  }

  std::string recorded() { return lettersOf(store.loadCleanupTransactions()); }
  std::string remembered() const { return lettersOf(history.cleanupTransactions()); }
  /// What the record should say of moved and restored items by what stands where.
  std::string standing() const {
    std::string letters;
    for (const Item& item : history.cleanupTransactions().at(0).items) {
      letters += trash.standing.contains(item.originalURL.path) ? 'r' : 'm';
    }
    return letters;
  }
  bool hasJournal() const {
    return std::ranges::any_of(files.contents, [](const auto& file) { return file.first.ends_with(".journal"); });
  }

 private:
  static std::string lettersOf(const std::vector<CleanupTransaction>& log) {
    std::string letters;
    for (const Item& item : log.at(0).items) {
      letters += rawValue(item.outcome).front();
    }
    return letters;
  }
};

TEST(CleanupHistory, RestoresOneItem) {
  Cleaned cleaned("mm");
  EXPECT_EQ(cleaned.history.restoreCleanupItem(identity(100), identity(2)), std::nullopt);
  EXPECT_EQ(cleaned.remembered(), "mr");
  EXPECT_EQ(cleaned.store.loadCleanupTransactions(), cleaned.history.cleanupTransactions());
  const Item& restored = cleaned.history.cleanupTransactions().at(0).items.at(1);
  EXPECT_EQ(restored.message, "Restored");
  EXPECT_EQ(restored.trashURL, std::nullopt);
  EXPECT_EQ(cleaned.trash.calls, (std::vector<std::string>{"putBack /trash/files/2 /code/2", "writeSizes"}));
  EXPECT_FALSE(cleaned.hasJournal());
}

TEST(CleanupHistory, SaysWhyAnItemCannotGoBack) {
  const std::string noRecord = "The cleanup record no longer exists.";
  const std::string unavailable = "The recorded Trash item is no longer available.";
  Cleaned cleaned("mfremmm");
  cleaned.trash.standing.erase("/trash/files/1");
  cleaned.trash.standing.insert("/code/5");
  cleaned.trash.failures["/code/6"] = {.refusal = TrashRefusal::parentGone};
  cleaned.store.updateCleanupTransactions([](auto& log) { log.at(0).items.at(6).trashURL.reset(); });
  cleaned.history.load();
  const std::string sentences[] = {unavailable,
                                   unavailable,
                                   unavailable,
                                   unavailable,
                                   "The original destination is already occupied.",
                                   "The original parent folder no longer exists.",
                                   unavailable,
                                   noRecord};
  for (int number = 1; const std::string& sentence : sentences) {
    EXPECT_EQ(cleaned.history.restoreCleanupItem(identity(100), identity(number)), sentence) << number;
    ++number;
  }
  EXPECT_EQ(cleaned.history.restoreCleanupItem(identity(101), identity(1)), noRecord);
  EXPECT_EQ(cleaned.recorded(), "mfremmm");
  EXPECT_EQ(cleaned.remembered(), "mfremmm");
  EXPECT_FALSE(cleaned.hasJournal());
}

TEST(CleanupHistory, UndoPutsBackWhatItCan) {
  const std::string occupied = "The original destination is already occupied.";
  const struct {
    std::string before;
    std::set<std::string> occupied;
    std::optional<std::string> sentence;
    std::string after;
  } cases[] = {{"mm", {}, std::nullopt, "rr"},
               {"fre", {}, std::nullopt, "fre"},
               {"mmm", {"/code/2"}, "1 item couldn't go back. " + occupied, "rmr"},
               {"mmmf", {"/code/1", "/code/3"}, "2 items couldn't go back. " + occupied, "mrmf"}};
  for (const auto& each : cases) {
    Cleaned cleaned(each.before);
    cleaned.trash.standing.insert(each.occupied.begin(), each.occupied.end());
    EXPECT_EQ(cleaned.history.undoTrash(identity(100)), each.sentence) << each.before;
    EXPECT_EQ(cleaned.recorded(), each.after) << each.before;
    EXPECT_EQ(cleaned.remembered(), each.after) << each.before;
    EXPECT_LE(std::ranges::count(cleaned.files.calls, "write " + logPath), 2) << each.before << ": cleaned, undone";
  }
  EXPECT_EQ(Cleaned("").history.undoTrash(identity(101)), "Nothing to undo.");
}

TEST(CleanupHistory, UndoKeepsWhatAnotherProcessRecordedMeanwhile) {
  Cleaned cleaned("m");
  CleanupTransaction other{.id = identity(101), .timestamp = {}, .source = {}, .items = {}};
  ScanStore(cleaned.files, "/support").appendCleanupTransaction(other);
  cleaned.history.undoTrash(identity(100));
  EXPECT_EQ(cleaned.recorded(), "r");
  EXPECT_EQ(cleaned.store.loadCleanupTransactions().at(1), other);
  EXPECT_EQ(cleaned.history.cleanupTransactions().at(1), other);
}

TEST(CleanupHistory, AnUnsavedUndoIsRememberedAndRecoveredAtTheNextStart) {
  Cleaned cleaned("mm");
  cleaned.files.failures["write " + logPath] = ENOSPC;
  EXPECT_EQ(cleaned.history.undoTrash(identity(100)), std::nullopt);
  EXPECT_EQ(cleaned.remembered(), "rr");
  EXPECT_EQ(cleaned.recorded(), "mm");
  cleaned.files.failures.clear();
  recoverInterruptedActs(cleaned.files, cleaned.store, cleaned.trash);
  EXPECT_EQ(cleaned.recorded(), "rr");
}

TEST(CleanupHistory, AnActThatIsNotSettledKeepsItsJournal) {
  for (const bool moves : {true, false}) {
    Cleaned cleaned("m");
    cleaned.trash.settlesActs = false;
    if (!moves) {
      cleaned.trash.failures["/code/1"] = {.isSettled = false};
    }
    EXPECT_EQ(cleaned.history.restoreCleanupItem(identity(100), identity(1)).has_value(), !moves);
    EXPECT_TRUE(cleaned.hasJournal());
  }
}

TEST(CleanupHistory, DyingAnywhereInAnUndoLeavesARecordOfWhereEachItemIs) {
  struct Death {};
  bool hasFinished = false;
  for (int steps = 0; !hasFinished; ++steps) {
    Cleaned cleaned("mm");
    int left = steps;
    const auto step = [&left] {
      if (left-- == 0) {
        throw Death();
      }
    };
    cleaned.files.beforeCall = step;
    cleaned.trash.aroundMove = step;
    try {
      cleaned.history.undoTrash(identity(100));
      hasFinished = true;
    } catch (const Death&) {
    }
    cleaned.files.beforeCall = [] {};
    recoverInterruptedActs(cleaned.files, cleaned.store, cleaned.trash);
    EXPECT_EQ(cleaned.recorded(), cleaned.standing()) << "died after " << steps << " steps";
    EXPECT_FALSE(cleaned.hasJournal()) << "died after " << steps << " steps";
  }
}

}  // namespace
}  // namespace lumenary
