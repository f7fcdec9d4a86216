#pragma once

#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "platform/DurableFiles.h"
#include "storage/CleanupTransaction.h"

namespace lumenary {

/// Everything of the program that survives a restart, as JSON files in one folder that nothing else touches. Blocks;
/// may be called from any thread, and several stores may work on one folder, in one process or in two.
class ScanStore {
 public:
  /// What a change of the log came to. A list that could not be saved is still the list to go on with.
  struct LogChange {
    std::vector<CleanupTransaction> transactions;
    bool isSaved = false;  ///< the log on the disk holds this list
  };

  static constexpr std::size_t transactionLimit = 100;
  static constexpr std::size_t logByteLimit = std::size_t{1} << 30;

  /// Makes the folder where it is missing; where that fails, later writes fail.
  ScanStore(DurableFiles& files, std::string supportFolder);

  /// The log, oldest first; empty where it is missing or can't be read. Bytes that can't be decoded are kept once in
  /// "cleanup-transactions.unreadable.json".
  std::vector<CleanupTransaction> loadCleanupTransactions();

  /// Adds a transaction at the end and keeps the newest 100.
  LogChange appendCleanupTransaction(const CleanupTransaction& transaction);

  /// Replaces the whole log by the newest 100 of `transactions`. What another process added meanwhile is lost: for a
  /// change of single items use `updateCleanupTransactions`.
  LogChange saveCleanupTransactions(std::vector<CleanupTransaction> transactions);

  /// Reads the log, lets `change` alter the list, and writes it, with no other process in between. A list that stays
  /// as it was isn't written. Nothing is written over bytes that were neither understood nor kept elsewhere.
  LogChange updateCleanupTransactions(const std::function<void(std::vector<CleanupTransaction>&)>& change);

  const std::string& support() const { return support_; }

 private:
  struct LogState;
  LogState readLog();
  bool keepDamaged(const std::string& bytes);
  bool makeWay(const LogState& log);

  DurableFiles& files_;
  std::string support_;
  std::string cleanupTransactionsURL_;
  std::string unreadableCopyURL_;
  std::string lockURL_;
  std::mutex mutex_;
};

}  // namespace lumenary
