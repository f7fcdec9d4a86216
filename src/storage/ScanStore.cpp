#include "storage/ScanStore.h"

#include <algorithm>
#include <utility>

#include "base/Path.h"

namespace lumenary {
namespace {

constexpr auto unreadableCopyName = "cleanup-transactions.unreadable.json";

void keepNewest(std::vector<CleanupTransaction>& transactions) {
  if (transactions.size() > ScanStore::transactionLimit) {
    const auto excess = static_cast<std::ptrdiff_t>(transactions.size() - ScanStore::transactionLimit);
    transactions.erase(transactions.begin(), transactions.begin() + excess);
  }
}

}  // namespace

/// The list, and what stands behind it in the file.
struct ScanStore::LogState {
  enum class Bytes {
    known,    ///< the list itself, or no file
    damaged,  ///< not a list: `damagedBytes`
    unseen,   ///< could not be read now, perhaps another time
  };
  std::vector<CleanupTransaction> transactions;
  Bytes bytes = Bytes::known;
  std::string damagedBytes;
};

ScanStore::ScanStore(DurableFiles& files, std::string supportFolder)
    : files_(files),
      support_(std::move(supportFolder)),
      cleanupTransactionsURL_(appendingPathComponent(support_, "cleanup-transactions.json")),
      unreadableCopyURL_(appendingPathComponent(support_, unreadableCopyName)),
      lockURL_(appendingPathComponent(support_, "cleanup-transactions.lock")) {
  static_cast<void>(files_.makeFolders(support_));
}

ScanStore::LogState ScanStore::readLog() {
  LogState log;
  auto bytes = files_.read(cleanupTransactionsURL_, logByteLimit);
  if (!bytes) {
    log.bytes = bytes.error().isMissing() ? LogState::Bytes::known : LogState::Bytes::unseen;
    return log;
  }
  if (auto decoded = decodeCleanupTransactions(*bytes)) {
    log.transactions = *std::move(decoded);
  } else if (decoded.error() == JsonDocument::Error::unavailable) {
    log.bytes = LogState::Bytes::unseen;
  } else {
    log.bytes = LogState::Bytes::damaged;
    log.damagedBytes = *std::move(bytes);
  }
  return log;
}

/// True where a copy stands. The first damage is what stays: an older copy is left as it is.
bool ScanStore::keepDamaged(const std::string& bytes) {
  const auto names = files_.names(support_);
  return names && (std::ranges::find(*names, unreadableCopyName) != names->end() ||
                   files_.writeAtomically(unreadableCopyURL_, bytes));
}

/// True where the log may be written over: what stands in it is in the list, or kept beside it.
bool ScanStore::makeWay(const LogState& log) {
  switch (log.bytes) {
    case LogState::Bytes::known:
      return true;
    case LogState::Bytes::damaged:
      return keepDamaged(log.damagedBytes);
    case LogState::Bytes::unseen:
      return false;
  }
  return false;
}

std::vector<CleanupTransaction> ScanStore::loadCleanupTransactions() {
  const std::scoped_lock oneAtATime(mutex_);
  LogState log = readLog();
  if (log.bytes == LogState::Bytes::damaged) {
    keepDamaged(log.damagedBytes);
  }
  return std::move(log.transactions);
}

ScanStore::LogChange ScanStore::appendCleanupTransaction(const CleanupTransaction& transaction) {
  return updateCleanupTransactions([&](auto& transactions) { transactions.push_back(transaction); });
}

ScanStore::LogChange ScanStore::saveCleanupTransactions(std::vector<CleanupTransaction> transactions) {
  return updateCleanupTransactions([&](auto& current) { current = std::move(transactions); });
}

ScanStore::LogChange ScanStore::updateCleanupTransactions(
    const std::function<void(std::vector<CleanupTransaction>&)>& change) {
  const std::scoped_lock oneAtATime(mutex_);
  const auto lock = files_.lock(lockURL_);
  const LogState log = readLog();
  LogChange result{.transactions = log.transactions, .isSaved = false};
  change(result.transactions);
  keepNewest(result.transactions);
  if (!lock && !lock.error().isWithoutLocks()) {
    return result;
  }
  if (log.bytes == LogState::Bytes::known && result.transactions == log.transactions) {
    result.isSaved = true;
  } else if (makeWay(log)) {
    const std::string text = encodeCleanupTransactions(result.transactions);
    result.isSaved = files_.writeAtomically(cleanupTransactionsURL_, text).has_value();
  }
  return result;
}

}  // namespace lumenary
