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
  return {{{static_cast<std::uint8_t>(number)}}, {}, CleanupTransaction::Source::storage, {}};
}

class ScanStoreTest : public testing::Test {
 protected:
  FakeFiles files;
  ScanStore store{files, "/support"};
};

TEST_F(ScanStoreTest, AppendsToTheLog) {
  EXPECT_EQ(store.loadCleanupTransactions(), Transactions{});
  EXPECT_TRUE(files.contents.empty()) << "reading an absent log writes nothing";
  store.appendCleanupTransaction(act(1));
  const auto change = ScanStore(files, "/support").appendCleanupTransaction(act(2));
  EXPECT_TRUE(change.isSaved);
  EXPECT_EQ(change.transactions, (Transactions{act(1), act(2)}));
  EXPECT_EQ(store.loadCleanupTransactions(), change.transactions);
}

TEST_F(ScanStoreTest, KeepsTheNewestHundred) {
  Transactions many;
  for (int number = 0; number < 102; ++number) {
    many.push_back(act(number));
  }
  store.saveCleanupTransactions({many.begin(), many.begin() + 101});
  EXPECT_EQ(store.loadCleanupTransactions(), Transactions(many.begin() + 1, many.begin() + 101));
  store.appendCleanupTransaction(many.back());
  EXPECT_EQ(store.loadCleanupTransactions(), Transactions(many.begin() + 2, many.end()));
}

TEST_F(ScanStoreTest, KeepsTheFirstDamageOnly) {
  files.contents[logPath] = "first damage";
  EXPECT_EQ(store.loadCleanupTransactions(), Transactions{});
  EXPECT_EQ(files.contents[copyPath], "first damage");
  EXPECT_EQ(files.contents[logPath], "first damage");
  files.contents[logPath] = "second damage";
  EXPECT_TRUE(store.appendCleanupTransaction(act(1)).isSaved);
  EXPECT_EQ(files.contents[copyPath], "first damage");
  EXPECT_EQ(store.loadCleanupTransactions(), Transactions{act(1)});
}

TEST_F(ScanStoreTest, ALogThatCannotBeSeenKeptOrWrittenStaysAndTheListGoesOn) {
  const std::pair<std::string, int> cases[] = {
      {"read " + logPath, EACCES},  {"read " + logPath, EIO},      {"read " + logPath, EISDIR},
      {"read " + logPath, EFBIG},   {"write " + copyPath, ENOSPC}, {"names /support", ENOSPC},
      {"lock " + lockPath, EAGAIN}, {"lock " + lockPath, EIO},     {"lock " + lockPath, EACCES}};
  for (const auto& [failure, error] : cases) {
    files.contents = {{logPath, "not a list"}};
    files.failures = {{failure, error}};
    const auto change = store.appendCleanupTransaction(act(1));
    EXPECT_FALSE(change.isSaved) << failure << ' ' << error;
    EXPECT_EQ(change.transactions, Transactions{act(1)}) << failure << ' ' << error;
    EXPECT_EQ(files.contents[logPath], "not a list") << failure << ' ' << error;
    EXPECT_FALSE(files.contents.contains(copyPath)) << failure << ' ' << error;
  }
}

TEST_F(ScanStoreTest, WritesWhereThereAreNoLocksButNothingThatChangesNothing) {
  for (const int error : {ENOLCK, EOPNOTSUPP}) {
    files.contents.clear();
    files.failures = {{"lock " + lockPath, error}};
    EXPECT_TRUE(store.appendCleanupTransaction(act(1)).isSaved) << error;
    EXPECT_EQ(store.loadCleanupTransactions(), Transactions{act(1)}) << error;
  }
  files.failures = {{"write " + logPath, EROFS}};
  EXPECT_TRUE(store.updateCleanupTransactions([](Transactions&) {}).isSaved);
  const auto change = store.appendCleanupTransaction(act(2));
  EXPECT_FALSE(change.isSaved);
  EXPECT_EQ(change.transactions, (Transactions{act(1), act(2)}));
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
