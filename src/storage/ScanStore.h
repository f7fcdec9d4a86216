#pragma once

#include <cstddef>
#include <expected>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/JsonReader.h"
#include "platform/DurableFiles.h"
#include "platform/PerfProbe.h"
#include "storage/CleanupTransaction.h"
#include "storage/ScanHistoryPoint.h"
#include "storage/StorageScanResult.h"
#include "storage/TidyReceipt.h"

namespace lumenary {

/// Why a stored scan could not be read.
struct ScanLoadError {
  std::optional<SystemError> system;        ///< the file could not be read
  std::optional<JsonDocument::Error> text;  ///< it could, but holds no result

  /// A sentence for a person.
  std::string description() const;
};

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

  static constexpr std::size_t historyLimit = 30;
  static constexpr std::size_t tidyLimit = 50;
  static constexpr std::size_t plainLogByteLimit = std::size_t{16} << 20;  ///< of these two
  static constexpr std::size_t scanByteLimit = std::size_t{256} << 20;

  /// Makes the folder where it is missing; where that fails, later writes fail.
  ScanStore(DurableFiles& files, std::string supportFolder, PerfProbe probe = {});

  /// Replaces the last result of that root, in the readable form and in the fast one. On the disk when it returns.
  /// Never holds a `load` up: that finds the former result or the new one, whole.
  std::expected<void, SystemError> save(const StorageScanResult& result);

  /// The last result of that root; none where nothing was saved. The fast form is asked first, and made where it is
  /// missing.
  std::expected<std::optional<StorageScanResult>, ScanLoadError> load(std::string_view root);

  /// Oldest first; empty where nothing was kept or it can't be read.
  std::vector<ScanHistoryPoint> loadHistory();
  std::vector<TidyReceipt> loadTidyLog();
  /// Adds at the end and keeps the newest 30. The answer is the list, whether or not it could be written. What could
  /// not be decoded is lost; what could not be read this time stays.
  std::vector<ScanHistoryPoint> appendHistory(const ScanHistoryPoint& point);
  /// The same with the newest 50.
  std::vector<TidyReceipt> appendTidy(const TidyReceipt& receipt);

  /// The log, oldest first; empty where it is missing or can't be read. Bytes that can't be decoded are kept once in
  /// "cleanup-transactions.unreadable.json".
  std::vector<CleanupTransaction> loadCleanupTransactions();
  /// The same, none where it can't be read this time.
  std::optional<std::vector<CleanupTransaction>> readCleanupTransactions();

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
  struct ScanFiles {
    std::string readable;
    std::string fast;
  };
  ScanFiles scanFiles(std::string_view root) const;
  /// `bytes` are those of the readable file that `result` was decoded from.
  void saveFastWhereMissing(const ScanFiles& urls, const std::string& bytes, const StorageScanResult& result);

  LogState readLog();
  bool keepDamaged(const std::string& bytes);
  bool makeWay(const LogState& log);

  DurableFiles& files_;
  std::string support_;
  PerfProbe probe_;
  std::string historyURL_;
  std::string tidyURL_;
  std::string cleanupTransactionsURL_;
  std::string unreadableCopyURL_;
  std::string lockURL_;
  std::string scansLockURL_;
  std::mutex mutex_;      ///< one change of a log at a time
  std::mutex scanMutex_;  ///< one write of a scan at a time
};

}  // namespace lumenary
