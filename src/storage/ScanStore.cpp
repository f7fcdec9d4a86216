#include "storage/ScanStore.h"

#include <algorithm>
#include <span>
#include <utility>

#include "base/Path.h"
#include "storage/ScanJson.h"

namespace lumenary {
namespace {

constexpr auto unreadableCopyName = "cleanup-transactions.unreadable.json";

template <class Record>
void keepNewest(std::vector<Record>& records, std::size_t limit) {
  if (records.size() > limit) {
    records.erase(records.begin(), records.end() - static_cast<std::ptrdiff_t>(limit));
  }
}

}  // namespace

namespace {

/// A log that is kept for information: what can't be decoded is lost with the next append.
template <class Record>
struct PlainLog {
  using Decode = std::expected<std::vector<Record>, JsonDocument::Error> (*)(std::string_view text);
  using Encode = std::string (*)(std::span<const Record> records);

  DurableFiles& files;
  const std::string& url;
  Decode decode;
  Encode encode;
  std::size_t limit;

  std::vector<Record> load(bool& mayReplace) const {
    const auto bytes = files.read(url, ScanStore::plainLogByteLimit);
    if (!bytes) {
      mayReplace = bytes.error().isMissing();
      return {};
    }
    auto records = decode(*bytes);
    mayReplace = records || records.error() != JsonDocument::Error::unavailable;
    return records ? *std::move(records) : std::vector<Record>();
  }

  std::vector<Record> append(const Record& record) const {
    bool mayReplace = false;
    std::vector<Record> records = load(mayReplace);
    records.push_back(record);
    keepNewest(records, limit);
    if (mayReplace) {
      [[maybe_unused]] const auto written = files.writeAtomically(url, encode(records));
    }
    return records;
  }
};

PlainLog<ScanHistoryPoint> history(DurableFiles& files, const std::string& url) {
  return {files, url, decodeScanHistory, encodeScanHistory, ScanStore::historyLimit};
}

PlainLog<TidyReceipt> tidyLog(DurableFiles& files, const std::string& url) {
  return {files, url, decodeTidyLog, encodeTidyLog, ScanStore::tidyLimit};
}

}  // namespace

std::vector<ScanHistoryPoint> ScanStore::loadHistory() {
  bool mayReplace = false;
  return history(files_, historyURL_).load(mayReplace);
}

std::vector<TidyReceipt> ScanStore::loadTidyLog() {
  bool mayReplace = false;
  return tidyLog(files_, tidyURL_).load(mayReplace);
}

std::vector<ScanHistoryPoint> ScanStore::appendHistory(const ScanHistoryPoint& point) {
  const std::scoped_lock oneAtATime(mutex_);
  return history(files_, historyURL_).append(point);
}

std::vector<TidyReceipt> ScanStore::appendTidy(const TidyReceipt& receipt) {
  const std::scoped_lock oneAtATime(mutex_);
  return tidyLog(files_, tidyURL_).append(receipt);
}

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

ScanStore::ScanStore(DurableFiles& files, std::string supportFolder, PerfProbe probe)
    : files_(files),
      support_(std::move(supportFolder)),
      probe_(std::move(probe)),
      historyURL_(appendingPathComponent(support_, "scan-history.json")),
      tidyURL_(appendingPathComponent(support_, "tidy-log.json")),
      cleanupTransactionsURL_(appendingPathComponent(support_, "cleanup-transactions.json")),
      unreadableCopyURL_(appendingPathComponent(support_, unreadableCopyName)),
      lockURL_(appendingPathComponent(support_, "cleanup-transactions.lock")),
      scansLockURL_(appendingPathComponent(support_, "scans.lock")) {
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
  return readCleanupTransactions().value_or(std::vector<CleanupTransaction>());
}

std::optional<std::vector<CleanupTransaction>> ScanStore::readCleanupTransactions() {
  const std::scoped_lock oneAtATime(mutex_);
  LogState log = readLog();
  if (log.bytes == LogState::Bytes::damaged) {
    keepDamaged(log.damagedBytes);
  }
  if (log.bytes == LogState::Bytes::unseen) {
    return std::nullopt;
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
  keepNewest(result.transactions, transactionLimit);
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
