#include <gtest/gtest.h>

#include "cleanup/CleanupJournal.h"
#include "cleanup/CleanupRecovery.h"
#include "support/FakeFiles.h"
#include "support/FakeTrash.h"

namespace lumenary {
namespace {

using Act = JournalEntry::Act;
using Item = CleanupTransaction::Item;
using Outcome = Item::Outcome;

const std::string logPath = "/support/cleanup-transactions.json";
const std::string folder = "/support/cleanup-journals";
const std::string journalPath = folder + "/left.journal";

UUID identity(int number) { return {.bytes = {static_cast<std::uint8_t>(number)}}; }

JournalEntry entry(Act act, int item, const std::string& trashPath = "/trash/files/dist") {
  return {.act = act,
          .transactionID = identity(1),
          .itemID = identity(item),
          .source = CleanupTransaction::Source::apps,
          .ruleID = "apps.Caches",
          .measuredBytes = 4096,
          .intent = {.originalPath = "/code/dist",
                     .trashPath = trashPath,
                     .identity = {.device = 1, .inode = 2, .kind = FileKind::folder},
                     .date = *parseISO8601("2026-11-22T21:46:05Z")}};
}

Item item(Outcome outcome, const char* trashPath, const std::string& message) {
  return {.id = identity(9),
          .originalURL = {.path = "/code/dist", .isFolder = true},
          .trashURL = trashPath == nullptr ? std::nullopt : std::optional(FileURL{.path = trashPath, .isFolder = true}),
          .measuredBytes = 4096,
          .ruleID = "apps.Caches",
          .outcome = outcome,
          .message = message};
}

CleanupTransaction transaction(std::vector<Item> items) {
  return {.id = identity(1),
          .timestamp = *parseISO8601("2026-11-22T21:46:05Z"),
          .source = CleanupTransaction::Source::apps,
          .items = std::move(items)};
}

/// What a process that died left, and what a later one does with it.
struct Aftermath {
  FakeFiles files;
  FakeTrash trash;

  explicit Aftermath(const std::vector<JournalEntry>& entries) {
    files.folders = {"/support", folder};
    for (const JournalEntry& each : entries) {
      files.contents[journalPath] += encodeJournalEntry(each);
    }
  }
  std::vector<CleanupTransaction> recover() {
    ScanStore store(files, "/support");
    recoverInterruptedActs(files, store, trash);
    return store.loadCleanupTransactions();
  }
  bool isJournalLeft() const { return files.contents.contains(journalPath); }
};

TEST(CleanupRecovery, TheLogTellsWhereAnInterruptedActEnded) {
  const Item moved = item(Outcome::movedToTrash, "/trash/files/dist", "Moved to Trash");
  const Item movedElsewhere = item(Outcome::movedToTrash, "/trash/files/dist.2", "Moved to Trash");
  const Item refused = item(Outcome::failed, nullptr, "It is marked as unchangeable, so it stays where it is.");
  const Item interrupted = item(Outcome::failed, nullptr, "The move was interrupted. The item is still in its place.");
  const Item restored = item(Outcome::restored, nullptr, "Restored");
  const Item emptied = item(Outcome::emptied, "/trash/files/dist", "Trash emptied");
  using Items = std::vector<Item>;
  const struct {
    const char* name;
    Act act;
    ActState state;
    Items before;
    Items after;
  } cases[] = {
      {"moved, not recorded", Act::move, ActState::inTrash, {}, {moved}},
      {"moved, recorded as failed", Act::move, ActState::inTrash, {refused}, {moved}},
      {"moved and recorded", Act::move, ActState::inTrash, {moved}, {moved}},
      {"moved, put back and recorded", Act::move, ActState::inTrash, {restored}, {restored}},
      {"never moved, not recorded", Act::move, ActState::atOrigin, {}, {interrupted}},
      {"moved, recorded, and put back by another program", Act::move, ActState::atOrigin, {moved}, {restored}},
      {"moved under another name", Act::move, ActState::atOrigin, {movedElsewhere}, {movedElsewhere}},
      {"refused and recorded", Act::move, ActState::atOrigin, {refused}, {refused}},
      {"put back since", Act::move, ActState::atOrigin, {restored}, {restored}},
      {"gone, not recorded", Act::move, ActState::neither, {}, {}},
      {"gone, recorded as moved", Act::move, ActState::neither, {moved}, {moved}},
      {"put back, not recorded", Act::restore, ActState::atOrigin, {moved}, {restored}},
      {"put back and recorded", Act::restore, ActState::atOrigin, {restored}, {restored}},
      {"put back, emptied on record", Act::restore, ActState::atOrigin, {emptied}, {emptied}},
      {"put back, no record of it", Act::restore, ActState::atOrigin, {}, {}},
      {"not put back", Act::restore, ActState::inTrash, {moved}, {moved}},
      {"neither here nor there", Act::restore, ActState::neither, {moved}, {moved}},
  };
  for (const auto& [name, act, state, before, after] : cases) {
    Aftermath aftermath({entry(act, 9)});
    aftermath.trash.states["/trash/files/dist"] = state;
    const auto logOf = [](const Items& items) {
      return items.empty() ? std::vector<CleanupTransaction>{} : std::vector{transaction(items)};
    };
    aftermath.files.contents[logPath] = encodeCleanupTransactions(logOf(before));
    const std::string journal = aftermath.files.contents[journalPath];
    EXPECT_EQ(aftermath.recover(), logOf(after)) << name;
    EXPECT_FALSE(aftermath.isJournalLeft()) << name;

    aftermath.files.contents[journalPath] = journal;
    EXPECT_EQ(aftermath.recover(), logOf(after)) << name << ", recovered twice";
  }
}

TEST(CleanupRecovery, ItemsJoinTheirTransactionInTheOrderOfTheAttempt) {
  Aftermath aftermath({entry(Act::move, 2, "/trash/files/a"), entry(Act::move, 3, "/trash/files/b")});
  aftermath.trash.states = {{"/trash/files/a", ActState::inTrash}, {"/trash/files/b", ActState::inTrash}};
  aftermath.files.contents[logPath] =
      encodeCleanupTransactions(std::vector{transaction({item(Outcome::restored, nullptr, "Restored")})});
  const auto items = aftermath.recover().at(0).items;
  ASSERT_EQ(items.size(), 3U);
  EXPECT_EQ(items[0].id, identity(9));
  EXPECT_EQ(items[1].id, identity(2));
  EXPECT_EQ(items[2].id, identity(3));
}

TEST(CleanupRecovery, AnActIsDatedByTheLastOfItsItems) {
  JournalEntry later = entry(Act::move, 8, "/away/files/dist");
  later.intent.date += std::chrono::hours(1);
  Aftermath aftermath({entry(Act::move, 9), later});
  aftermath.trash.states = {{"/trash/files/dist", ActState::inTrash}, {"/away/files/dist", ActState::unknown}};
  EXPECT_EQ(aftermath.recover().at(0).timestamp, later.intent.date) << "or the later one would count as another's";
}

TEST(CleanupRecovery, EveryNameThatWasTriedIsSettledAndTheLastCounts) {
  Aftermath aftermath({entry(Act::move, 9, "/trash/files/dist"), entry(Act::move, 9, "/trash/files/dist.2")});
  aftermath.trash.states = {{"/trash/files/dist", ActState::neither}, {"/trash/files/dist.2", ActState::inTrash}};
  EXPECT_EQ(aftermath.recover(),
            std::vector{transaction({item(Outcome::movedToTrash, "/trash/files/dist.2", "Moved to Trash")})});
  EXPECT_EQ(aftermath.trash.calls,
            (std::vector<std::string>{"settle /trash/files/dist", "settle /trash/files/dist.2"}));
}

TEST(CleanupRecovery, AnActThatIsNotForTheLogIsSettledOnly) {
  JournalEntry quiet = entry(Act::move, 8, "/trash/files/agent");
  quiet.isLogged = false;
  Aftermath aftermath({quiet, entry(Act::move, 9)});
  aftermath.trash.states = {{"/trash/files/agent", ActState::inTrash}, {"/trash/files/dist", ActState::inTrash}};
  const auto moved = item(Outcome::movedToTrash, "/trash/files/dist", "Moved to Trash");
  EXPECT_EQ(aftermath.recover(), std::vector{transaction({moved})});
  EXPECT_EQ(aftermath.trash.calls.front(), "settle /trash/files/agent");
  EXPECT_FALSE(aftermath.isJournalLeft());
}

TEST(CleanupRecovery, AnActOnAVolumeThatIsAwayWaitsForAnotherTime) {
  Aftermath aftermath({entry(Act::move, 8, "/away/files/dist"), entry(Act::move, 9)});
  aftermath.trash.states = {{"/away/files/dist", ActState::unknown}, {"/trash/files/dist", ActState::inTrash}};
  const auto moved = item(Outcome::movedToTrash, "/trash/files/dist", "Moved to Trash");
  EXPECT_EQ(aftermath.recover(), std::vector{transaction({moved})});
  EXPECT_EQ(aftermath.files.contents[journalPath], encodeJournalEntry(entry(Act::move, 8, "/away/files/dist")))
      << "what is settled isn't asked again";

  aftermath.trash.states["/away/files/dist"] = ActState::neither;
  EXPECT_EQ(aftermath.recover(), std::vector{transaction({moved})});
  EXPECT_FALSE(aftermath.isJournalLeft());
}

TEST(CleanupRecovery, ALineThatIsNotUnderstoodKeepsTheJournalAndHoldsNothingUp) {
  Aftermath aftermath({entry(Act::move, 9)});
  aftermath.files.contents[journalPath] += "{\"act\":\"of a later version\"}\n";
  aftermath.trash.states["/trash/files/dist"] = ActState::inTrash;
  EXPECT_EQ(aftermath.recover().size(), 1U);
  EXPECT_EQ(aftermath.files.contents[journalPath], "{\"act\":\"of a later version\"}\n");
}

TEST(CleanupRecovery, OneThingInTheTrashIsClaimedByOneItem) {
  Item claiming = item(Outcome::movedToTrash, "/trash/files/dist", "Moved to Trash");
  claiming.id = identity(5);
  const Item refused = item(Outcome::failed, nullptr, "It could not be moved.");
  for (const auto& before : {std::vector{transaction({refused, claiming})}, std::vector{transaction({claiming})}}) {
    Aftermath aftermath({entry(Act::move, 9)});
    aftermath.trash.states["/trash/files/dist"] = ActState::inTrash;
    aftermath.files.contents[logPath] = encodeCleanupTransactions(before);
    EXPECT_EQ(aftermath.recover(), before);
    EXPECT_FALSE(aftermath.isJournalLeft());
  }
}

TEST(CleanupRecovery, ARecordOfBeforeTheActClaimsAnotherThing) {
  Item earlier = item(Outcome::movedToTrash, "/trash/files/dist", "Moved to Trash");
  earlier.id = identity(5);
  CleanupTransaction before = transaction({earlier});
  before.id = identity(6);
  before.timestamp -= std::chrono::hours(1);
  Aftermath aftermath({entry(Act::move, 9)});
  aftermath.trash.states["/trash/files/dist"] = ActState::inTrash;
  aftermath.files.contents[logPath] = encodeCleanupTransactions(std::vector{before});
  EXPECT_EQ(aftermath.recover().size(), 2U) << "emptied by another program, and the name taken again";
}

TEST(CleanupRecovery, AJournalStaysUntilItIsReadAndItsActsAreOnRecord) {
  const std::pair<std::string, int> failures[] = {{"read " + journalPath, EIO},
                                                  {"write " + logPath, ENOSPC},
                                                  {"lock /support/cleanup-transactions.lock", EAGAIN},
                                                  {"lock " + folder + "/lock", EAGAIN}};
  for (const auto& failure : failures) {
    Aftermath aftermath({entry(Act::move, 9)});
    aftermath.trash.states["/trash/files/dist"] = ActState::inTrash;
    aftermath.files.failures.insert(failure);
    aftermath.recover();
    EXPECT_TRUE(aftermath.isJournalLeft()) << failure.first;
    aftermath.files.failures.clear();
    EXPECT_EQ(aftermath.recover().size(), 1U) << failure.first;
    EXPECT_FALSE(aftermath.isJournalLeft()) << failure.first;
  }
}

TEST(CleanupRecovery, ARefusalIsNotTakenForAnInterruption) {
  JournalEntry refused = entry(Act::move, 9);
  refused.refusal = "Its volume is read-only, so it stays where it is.";
  for (const ActState state : {ActState::atOrigin, ActState::inTrash}) {
    Aftermath aftermath({entry(Act::move, 9), refused});
    aftermath.trash.states["/trash/files/dist"] = state;
    const bool isMoved = state == ActState::inTrash;
    const Item expected = isMoved ? item(Outcome::movedToTrash, "/trash/files/dist", "Moved to Trash")
                                  : item(Outcome::failed, nullptr, refused.refusal);
    EXPECT_EQ(aftermath.recover(), std::vector{transaction({expected})}) << "the disk counts more than the refusal";
  }
}

TEST(CleanupRecovery, AnActThatStillRunsIsLeftAlone) {
  Aftermath aftermath({entry(Act::move, 9)});
  aftermath.files.growing = {journalPath};
  EXPECT_TRUE(aftermath.recover().empty());
  EXPECT_TRUE(aftermath.isJournalLeft());
  EXPECT_TRUE(aftermath.trash.calls.empty());
}

TEST(CleanupRecovery, RunsWhereThereAreNoLocks) {
  Aftermath aftermath({entry(Act::move, 9)});
  aftermath.trash.states["/trash/files/dist"] = ActState::inTrash;
  aftermath.files.failures = {{"lock " + folder + "/lock", ENOLCK},
                              {"lock /support/cleanup-transactions.lock", ENOLCK}};
  EXPECT_EQ(aftermath.recover().size(), 1U);
  EXPECT_FALSE(aftermath.isJournalLeft());
}

TEST(CleanupRecovery, WhereNothingWasLeftNothingIsMade) {
  Aftermath aftermath({});
  aftermath.recover();
  EXPECT_TRUE(aftermath.files.contents.empty());
  aftermath.files.folders.erase(folder);
  aftermath.recover();
  EXPECT_FALSE(aftermath.files.folders.contains(folder));
}

}  // namespace
}  // namespace lumenary
