#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>

#include "base/Path.h"
#include "cleanup/CleanupHistory.h"
#include "cleanup/CleanupJournal.h"
#include "cleanup/CleanupRecovery.h"
#include "cleanup/StorageTrashCoordinator.h"
#include "platform/linux/LinuxContentReader.h"
#include "platform/linux/LinuxDurableFiles.h"
#include "platform/linux/LinuxFileReader.h"
#include "platform/linux/LinuxMountTable.h"
#include "platform/linux/LinuxTrash.h"
#include "storage/ScanStore.h"
#include "support/FaultKernel.h"
#include "support/JudgedHome.h"
#include "support/TemporaryHome.h"

// A whole act, from the intent to the record, with one fault at each of its system calls in turn: every error that fits
// the call, and the process killed before and after it. Whatever happened, the item stands whole in exactly one place,
// the log can be read and claims nothing that isn't so, and a restart leaves the Trash and the log in agreement.

namespace lumenary {
namespace {

using Item = CleanupTransaction::Item;

/// One process's worth of the program over the kernel of a test.
struct Program {
  Program(LinuxKernel& kernel, const Places& givenPlaces)
      : places(givenPlaces),
        files(kernel),
        trash(kernel, reader, mountTable, places),
        store(files, places.support),
        history(files, store, trash) {}

  void moveToTrash(const std::string& path) {
    auto opened = openItem(reader, path);
    ASSERT_TRUE(opened.has_value());
    CleanupJournal journal(files, places.support);
    const CleanupTransaction transaction{.id = UUID::random(), .timestamp = {}, .source = source, .items = {}};
    JournalEntry entry;
    entry.transactionID = transaction.id;
    entry.itemID = UUID::random();
    entry.source = source;
    entry.ruleID = "developer.node_modules";
    entry.measuredBytes = 8192;
    CleanupJournal::Recorder recorder(journal, entry);
    const auto moved = trash.move(*opened, entry.measuredBytes, recorder);
    trash.writeSizes();
    if (moved ? !moved->isSettled : !moved.error().isSettled) {
      journal.keepForRecovery();
    }
    Item item{.id = entry.itemID,
              .originalURL = {.path = path, .isFolder = true},
              .trashURL = {},
              .measuredBytes = entry.measuredBytes,
              .ruleID = entry.ruleID,
              .outcome = moved ? Item::Outcome::movedToTrash : Item::Outcome::failed,
              .message = moved ? "Moved to Trash" : moved.error().description()};
    if (moved) {
      item.trashURL = FileURL{.path = moved->trashPath, .isFolder = true};
    }
    CleanupTransaction recorded = transaction;
    recorded.timestamp = std::chrono::floor<Date::duration>(std::chrono::system_clock::now());
    recorded.items = {item};
    if (store.appendCleanupTransaction(recorded).isSaved) {
      journal.finish();
    }
  }

  /// Through the gate for scanned items, which looks at the disk before and after.
  void moveScanned(const std::string& path) {
    CleanupJournal journal(files, places.support);
    const auto transactionID = UUID::random();
    const StorageMove move{folderEntry(path, 8192)};
    const auto outcomes = StorageTrashCoordinator(reader, contents, trash, gate, places)
                              .moveToTrash(std::span(&move, 1), source, transactionID, journal);
    const CleanupOutcome& outcome = outcomes.front();
    CleanupTransaction recorded{.id = transactionID,
                                .timestamp = std::chrono::floor<Date::duration>(std::chrono::system_clock::now()),
                                .source = source,
                                .items = {}};
    recorded.items.push_back({.id = outcome.id,
                              .originalURL = outcome.url,
                              .trashURL = outcome.trashURL,
                              .measuredBytes = move.entry.byteCount,
                              .ruleID = storageRuleID(source, move.entry.category),
                              .outcome = outcome.success ? Item::Outcome::movedToTrash : Item::Outcome::failed,
                              .message = outcome.message});
    if (store.appendCleanupTransaction(recorded).isSaved) {
      journal.finish();
    }
  }

  void undoLast() {
    history.load();
    if (!history.cleanupTransactions().empty()) {
      history.undoTrash(history.cleanupTransactions().back().id);
    }
  }

  static constexpr auto source = CleanupTransaction::Source::buildCleanup;
  Places places;
  LinuxFileReader reader;
  LinuxMountTable mountTable;
  LinuxContentReader contents{reader};
  StorageTrashGate gate{reader, mountTable, places};
  LinuxDurableFiles files;
  LinuxTrash trash;
  ScanStore store;
  CleanupHistory history;
};

class Scenario {
 public:
  enum class Act { move, moveScanned, moveBesideTakenName, restore };

  explicit Scenario(Act act) : act_(act) {
    home_.write("Code/app/package.json");
    home_.write("Code/app/node_modules/left/index.js", "left");
    home_.write("Code/app/node_modules/right/index.js", "right");
    LinuxKernel kernel;
    Program program(kernel, home_.places());
    if (act == Act::moveBesideTakenName) {
      home_.write("Code/other/node_modules/index.js");
      program.moveToTrash(home_.path("Code/other/node_modules"));
    }
    if (act == Act::restore) {
      program.moveToTrash(item());
    }
  }

  void run(LinuxKernel& kernel) {
    Program program(kernel, home_.places());
    if (act_ == Act::restore) {
      program.undoLast();
    } else if (act_ == Act::moveScanned) {
      program.moveScanned(item());
    } else {
      program.moveToTrash(item());
    }
  }

  void runAndDie(Fault fault) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      FaultKernel kernel(fault);
      run(kernel);
      ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status));
  }

  /// What must hold at any moment.
  void expectNothingLost() const {
    std::vector<std::string> places;
    if (standsAt(item())) {
      places.push_back(item());
    }
    for (const std::string& name : namesIn(home_.trash("files"))) {
      if (standsAt(home_.trash("files/" + name + "/left"))) {
        places.push_back(home_.trash("files/" + name));
      }
    }
    ASSERT_EQ(places.size(), 1U);
    EXPECT_EQ(contentsOf(places.front() + "/left/index.js"), "left");
    EXPECT_EQ(contentsOf(places.front() + "/right/index.js"), "right");
    const std::string log = home_.places().support + "/cleanup-transactions.json";
    if (standsAt(log)) {
      EXPECT_TRUE(decodeCleanupTransactions(contentsOf(log)).has_value());
    }
  }

  /// What must hold once the next process has put things right.
  void expectAgreementAfterRestart() {
    LinuxKernel kernel;
    Program program(kernel, home_.places());
    recoverInterruptedActs(program.files, program.store, program.trash);
    expectNothingLost();
    EXPECT_TRUE(journals().empty());
    expectInfoForEachFile();
    const auto log = program.store.loadCleanupTransactions();
    bool isTold = standsAt(item());
    for (const CleanupTransaction& transaction : log) {
      for (const Item& recorded : transaction.items) {
        expectTrue(recorded);
        isTold |= recorded.originalURL.path == item() && recorded.outcome == Item::Outcome::movedToTrash;
      }
    }
    EXPECT_TRUE(isTold) << "the item is in the Trash and no record tells it";
    recoverInterruptedActs(program.files, program.store, program.trash);
    EXPECT_EQ(program.store.loadCleanupTransactions(), log);
    expectWayBack(program, log);
  }

 private:
  std::string item() const { return home_.path("Code/app/node_modules"); }

  std::set<std::string> journals() const {
    std::set<std::string> names = namesIn(CleanupJournal::folder(home_.places().support));
    names.erase("lock");
    return names;
  }

  void expectInfoForEachFile() const {
    std::set<std::string> expected;
    for (const std::string& name : namesIn(home_.trash("files"))) {
      expected.insert(name + ".trashinfo");
    }
    EXPECT_EQ(namesIn(home_.trash("info")), expected);
  }

  void expectTrue(const Item& recorded) const {
    const bool isInTrash = recorded.trashURL && standsAt(recorded.trashURL->path);
    switch (recorded.outcome) {
      case Item::Outcome::movedToTrash:
        EXPECT_TRUE(isInTrash);
        break;
      case Item::Outcome::failed:
      case Item::Outcome::restored:
        EXPECT_TRUE(standsAt(recorded.originalURL.path));
        EXPECT_FALSE(recorded.trashURL.has_value());
        break;
      case Item::Outcome::emptied:
        ADD_FAILURE() << "nothing was emptied";
        break;
    }
  }

  /// What is in the Trash can be put back from the record.
  void expectWayBack(Program& program, const std::vector<CleanupTransaction>& log) const {
    program.history.load();
    for (const CleanupTransaction& transaction : log) {
      EXPECT_EQ(program.history.undoTrash(transaction.id), std::nullopt);
    }
    EXPECT_TRUE(standsAt(item()));
    expectInfoForEachFile();
  }

  TemporaryHome home_;
  Act act_;
};

struct Counts {
  std::size_t failures = 0;
  std::size_t kills = 0;
};

Counts runAllFaults(Scenario::Act act) {
  FaultKernel recording;
  Scenario(act).run(recording);
  Counts counts;
  for (std::size_t call = 0; call < recording.calls().size(); ++call) {
    for (const int error : errorsOf(recording.calls()[call])) {
      SCOPED_TRACE("call " + std::to_string(call) + " " + std::string(recording.calls()[call]) + " fails with " +
                   std::to_string(error));
      Scenario scenario(act);
      FaultKernel kernel({.kind = Fault::Kind::fail, .call = call, .error = error});
      scenario.run(kernel);
      scenario.expectNothingLost();
      scenario.expectAgreementAfterRestart();
      ++counts.failures;
    }
    for (const auto kind : {Fault::Kind::killBefore, Fault::Kind::killAfter}) {
      SCOPED_TRACE("killed at call " + std::to_string(call) + " " + std::string(recording.calls()[call]));
      Scenario scenario(act);
      scenario.runAndDie({.kind = kind, .call = call});
      scenario.expectNothingLost();
      scenario.expectAgreementAfterRestart();
      ++counts.kills;
    }
    if (testing::Test::HasFailure()) {
      break;
    }
  }
  return counts;
}

class TrashCrashTest : public testing::TestWithParam<std::pair<const char*, Scenario::Act>> {};

TEST_P(TrashCrashTest, LosesNothingAndClaimsNothingFalse) {
  const Counts counts = runAllFaults(GetParam().second);
  std::printf("%s: %zu failing calls, %zu kills\n", GetParam().first, counts.failures, counts.kills);
  EXPECT_GT(counts.failures, 50U);
  EXPECT_GT(counts.kills, 30U);
}

INSTANTIATE_TEST_SUITE_P(Acts, TrashCrashTest,
                         testing::Values(std::pair("move", Scenario::Act::move),
                                         std::pair("moveScanned", Scenario::Act::moveScanned),
                                         std::pair("moveBesideTakenName", Scenario::Act::moveBesideTakenName),
                                         std::pair("restore", Scenario::Act::restore)),
                         [](const auto& parameter) { return std::string(parameter.param.first); });

}  // namespace
}  // namespace lumenary
