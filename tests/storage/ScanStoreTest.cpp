#include <gtest/gtest.h>

#include <thread>

#include "platform/linux/LinuxDurableFiles.h"
#include "storage/ScanStore.h"
#include "support/FakeFiles.h"
#include "support/TemporaryHome.h"

namespace lumenary {
namespace {

using Transactions = std::vector<CleanupTransaction>;

const std::string logPath = "/support/cleanup-transactions.json";
const std::string copyPath = "/support/cleanup-transactions.unreadable.json";
const std::string lockPath = "/support/cleanup-transactions.lock";

CleanupTransaction act(int number) {
  return {.id = {.bytes = {static_cast<std::uint8_t>(number)}},
          .timestamp = {},
          .source = CleanupTransaction::Source::storage,
          .items = {}};
}

TEST(ScanStore, AppendsToTheLog) {
  FakeFiles files;
  ScanStore(files, "/support").appendCleanupTransaction(act(1));
  const auto change = ScanStore(files, "/support").appendCleanupTransaction(act(2));
  EXPECT_TRUE(change.isSaved);
  EXPECT_EQ(change.transactions, (Transactions{act(1), act(2)}));
  EXPECT_EQ(ScanStore(files, "/support").loadCleanupTransactions(), change.transactions);
}

TEST(ScanStore, KeepsTheNewestHundred) {
  FakeFiles files;
  ScanStore store(files, "/support");
  Transactions many;
  for (int number = 0; number < 102; ++number) {
    many.push_back(act(number));
  }
  store.saveCleanupTransactions({many.begin(), many.begin() + 101});
  EXPECT_EQ(store.loadCleanupTransactions(), Transactions(many.begin() + 1, many.begin() + 101));
  store.appendCleanupTransaction(many.back());
  EXPECT_EQ(store.loadCleanupTransactions(), Transactions(many.begin() + 2, many.end()));
}

TEST(ScanStore, ReadingAnAbsentLogWritesNothing) {
  FakeFiles files;
  EXPECT_EQ(ScanStore(files, "/support").loadCleanupTransactions(), Transactions{});
  EXPECT_TRUE(files.contents.empty());
}

TEST(ScanStore, KeepsTheFirstDamageOnly) {
  FakeFiles files;
  ScanStore store(files, "/support");
  files.contents[logPath] = "first damage";
  EXPECT_EQ(store.loadCleanupTransactions(), Transactions{});
  EXPECT_EQ(files.contents[copyPath], "first damage");
  EXPECT_EQ(files.contents[logPath], "first damage");
  files.contents[logPath] = "second damage";
  EXPECT_TRUE(store.appendCleanupTransaction(act(1)).isSaved);
  EXPECT_EQ(files.contents[copyPath], "first damage");
  EXPECT_EQ(store.loadCleanupTransactions(), Transactions{act(1)});
}

TEST(ScanStore, DamageThatCannotBeKeptStaysInTheLog) {
  for (const std::string& failure : {"write " + copyPath, std::string("names /support")}) {
    FakeFiles files;
    files.contents[logPath] = "damage";
    files.failures[failure] = ENOSPC;
    EXPECT_FALSE(ScanStore(files, "/support").appendCleanupTransaction(act(1)).isSaved) << failure;
    EXPECT_EQ(files.contents[logPath], "damage") << failure;
  }
}

TEST(ScanStore, ALogThatCannotBeSeenIsNotReplaced) {
  for (const int error : {EACCES, EIO, EISDIR, EFBIG}) {
    FakeFiles files;
    files.contents[logPath] = "unseen";
    files.failures["read " + logPath] = error;
    ScanStore store(files, "/support");
    EXPECT_EQ(store.loadCleanupTransactions(), Transactions{});
    const auto change = store.appendCleanupTransaction(act(1));
    EXPECT_FALSE(change.isSaved);
    EXPECT_EQ(change.transactions, Transactions{act(1)});
    EXPECT_EQ(files.contents[logPath], "unseen");
    EXPECT_FALSE(files.contents.contains(copyPath));
  }
}

TEST(ScanStore, WritesOnlyUnderTheLockWhereThereAreLocks) {
  const struct {
    int lockError;
    bool isSaved;
  } cases[] = {{EAGAIN, false}, {EIO, false}, {EACCES, false}, {ENOLCK, true}, {EOPNOTSUPP, true}};
  for (const auto& [lockError, isSaved] : cases) {
    FakeFiles files;
    files.failures["lock " + lockPath] = lockError;
    const auto change = ScanStore(files, "/support").appendCleanupTransaction(act(1));
    EXPECT_EQ(change.isSaved, isSaved) << lockError;
    EXPECT_EQ(change.transactions, Transactions{act(1)}) << lockError;
    EXPECT_EQ(files.contents.contains(logPath), isSaved) << lockError;
  }
}

TEST(ScanStore, AFailedWriteStillGivesTheListToGoOnWith) {
  FakeFiles files;
  files.failures["write " + logPath] = ENOSPC;
  const auto change = ScanStore(files, "/support").appendCleanupTransaction(act(1));
  EXPECT_FALSE(change.isSaved);
  EXPECT_EQ(change.transactions, Transactions{act(1)});
}

TEST(ScanStore, AChangeThatChangesNothingWritesNothing) {
  FakeFiles files;
  ScanStore store(files, "/support");
  store.appendCleanupTransaction(act(1));
  files.failures["write " + logPath] = EROFS;
  EXPECT_TRUE(store.updateCleanupTransactions([](Transactions&) {}).isSaved);
}

TEST(ScanStore, TwoStoresAtOnceLoseNoTransaction) {
  const TemporaryHome home;
  LinuxKernel kernel;
  const auto appendTen = [&](int first) {
    LinuxDurableFiles files(kernel);
    ScanStore store(files, home.path("support"));
    for (int number = first; number < first + 10; ++number) {
      store.appendCleanupTransaction(act(number));
    }
  };
  {
    const std::jthread other(appendTen, 1);
    appendTen(101);
  }
  LinuxDurableFiles files(kernel);
  EXPECT_EQ(ScanStore(files, home.path("support")).loadCleanupTransactions().size(), 20U);
}

}  // namespace
}  // namespace lumenary
