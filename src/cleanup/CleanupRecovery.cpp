#include "cleanup/CleanupRecovery.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "base/Path.h"
#include "cleanup/CleanupJournal.h"

namespace lumenary {
namespace {

using Item = CleanupTransaction::Item;
using Outcome = Item::Outcome;

constexpr std::size_t journalByteLimit = std::size_t{64} << 20;
/// By how much the clock may have been set back between an act and its record.
constexpr auto dateAllowance = std::chrono::minutes(2);
constexpr auto interruptedMessage = "The move was interrupted. The item is still in its place.";

/// An intended act, and where it ended.
struct SettledAct {
  JournalEntry entry;
  ActState state = ActState::unknown;
};

/// When the last act of each transaction of a journal was intended.
using LastDates = std::map<UUID, Date>;

LastDates lastDatesOf(const std::vector<SettledAct>& acts) {
  LastDates dates;
  for (const SettledAct& act : acts) {
    Date& date = dates.try_emplace(act.entry.transactionID, act.entry.intent.date).first->second;
    date = std::max(date, act.entry.intent.date);
  }
  return dates;
}

FileURL urlOf(const JournalEntry& entry, const std::string& path) {
  return {.path = path, .isFolder = entry.intent.identity.kind == FileKind::folder};
}

void setState(Item& item, Outcome outcome, std::optional<FileURL> trashURL, std::string_view message) {
  item.outcome = outcome;
  item.trashURL = std::move(trashURL);
  item.message = message;
}

/// The log with its items found by identity, and the places in the Trash that they claim.
class IndexedLog {
 public:
  /// `dates` must outlive the value.
  IndexedLog(std::vector<CleanupTransaction>& transactions, const LastDates& dates)
      : transactions_(transactions), dates_(dates) {
    for (std::size_t position = 0; position < transactions.size(); ++position) {
      transactionPositions_.emplace(transactions[position].id, position);
      for (std::size_t item = 0; item < transactions[position].items.size(); ++item) {
        const Item& each = transactions[position].items[item];
        itemPositions_.emplace(std::pair(transactions[position].id, each.id), std::pair(position, item));
        if (each.outcome == Outcome::movedToTrash && each.trashURL) {
          note(each.trashURL->path, transactions[position].timestamp);
        }
      }
    }
  }

  Item* find(const JournalEntry& entry) {
    const auto found = itemPositions_.find({entry.transactionID, entry.itemID});
    return found == itemPositions_.end() ? nullptr : &transactions_[found->second.first].items[found->second.second];
  }

  /// True the first time only, and not where an item on record stands at that place: of two records of one thing the
  /// second would be put back in the other's stead. A record of before the act was of another thing, which has left the
  /// Trash since.
  bool claim(const TrashIntent& intent) {
    const auto claimed = claimed_.find(intent.trashPath);
    if (claimed != claimed_.end() && claimed->second + dateAllowance >= intent.date) {
      return false;
    }
    note(intent.trashPath, intent.date);
    return true;
  }

  /// Adds an item that is in no transaction yet, and its transaction where the log has none.
  Item& add(const JournalEntry& entry) {
    const auto [position, isNew] = transactionPositions_.emplace(entry.transactionID, transactions_.size());
    if (isNew) {
      transactions_.push_back({.id = entry.transactionID,
                               .timestamp = dates_.at(entry.transactionID),
                               .source = entry.source,
                               .items = {}});
    }
    return transactions_[position->second].items.emplace_back(
        Item{.id = entry.itemID,
             .originalURL = urlOf(entry, entry.intent.originalPath),
             .trashURL = {},
             .measuredBytes = entry.measuredBytes,
             .ruleID = entry.ruleID,
             .message = {}});
  }

 private:
  void note(const std::string& trashPath, Date date) {
    Date& latest = claimed_.try_emplace(trashPath, date).first->second;
    latest = std::max(latest, date);
  }

  std::vector<CleanupTransaction>& transactions_;
  const LastDates& dates_;
  std::map<UUID, std::size_t> transactionPositions_;
  std::map<std::pair<UUID, UUID>, std::pair<std::size_t, std::size_t>> itemPositions_;
  std::map<std::string, Date> claimed_;  ///< when the latest act on record that ended there was over
};

bool isRecordedIn(const Item& item, const std::string& trashPath) {
  return item.outcome == Outcome::movedToTrash && item.trashURL && item.trashURL->path == trashPath;
}

void recordMove(const SettledAct& act, IndexedLog& log) {
  const std::string& trashPath = act.entry.intent.trashPath;
  Item* item = log.find(act.entry);
  if (act.state == ActState::inTrash && (item == nullptr || item->outcome == Outcome::failed)) {
    if (!log.claim(act.entry.intent)) {
      return;
    }
    setState(item != nullptr ? *item : log.add(act.entry), Outcome::movedToTrash, urlOf(act.entry, trashPath),
             "Moved to Trash");
  } else if (act.state == ActState::atOrigin && item == nullptr) {
    const std::string& refusal = act.entry.refusal;
    setState(log.add(act.entry), Outcome::failed, std::nullopt, refusal.empty() ? interruptedMessage : refusal);
  } else if (act.state == ActState::atOrigin && isRecordedIn(*item, trashPath)) {
    item->markRestored();  // it was moved, and somebody has put it back since
  }
}

void recordRestore(const SettledAct& act, IndexedLog& log) {
  Item* item = log.find(act.entry);
  if (act.state == ActState::atOrigin && item != nullptr && item->outcome == Outcome::movedToTrash) {
    item->markRestored();
  }
}

/// Where each act ended, in the order of the attempts. Of several lines of one act the last tells of the attempt that
/// counts; the earlier ones are settled as well, as each may have left an info file. The lines of which nothing is
/// known yet are added to `unsettled`.
std::vector<SettledAct> settleAll(std::vector<JournalEntry> entries, Trash& trash, std::string& unsettled) {
  std::vector<SettledAct> acts;
  std::map<std::tuple<UUID, UUID, JournalEntry::Act>, std::size_t> positions;
  for (JournalEntry& entry : entries) {
    const ActState state = trash.settle(entry.intent);
    if (state == ActState::unknown) {
      unsettled += encodeJournalEntry(entry);
    }
    const auto [position, isNew] =
        positions.emplace(std::tuple(entry.transactionID, entry.itemID, entry.act), acts.size());
    if (isNew) {
      acts.emplace_back();
    }
    acts[position->second] = {.entry = std::move(entry), .state = state};
  }
  return acts;
}

/// True once the log tells where the acts ended.
bool record(std::vector<SettledAct> acts, ScanStore& store) {
  std::erase_if(acts, [](const SettledAct& act) { return !act.entry.isLogged; });
  const auto hasEnded = [](const SettledAct& act) {
    return act.state == ActState::inTrash || act.state == ActState::atOrigin;
  };
  if (std::ranges::none_of(acts, hasEnded)) {
    return true;
  }
  const LastDates dates = lastDatesOf(acts);
  const auto change = [&](std::vector<CleanupTransaction>& transactions) {
    IndexedLog log(transactions, dates);
    for (const SettledAct& act : acts) {
      if (act.entry.act == JournalEntry::Act::move) {
        recordMove(act, log);
      } else {
        recordRestore(act, log);
      }
    }
  };
  return store.updateCleanupTransactions(change).isSaved;
}

void recoverJournal(const std::string& path, DurableFiles& files, ScanStore& store, Trash& trash) {
  const auto text = files.read(path, journalByteLimit);
  if (!text) {
    return;
  }
  auto journal = decodeJournal(*text);
  if (!journal) {
    return;
  }
  std::string unsettled = std::move(journal->foreignLines);
  std::vector<SettledAct> acts = settleAll(std::move(journal->entries), trash, unsettled);
  if (!record(std::move(acts), store)) {
    return;
  }
  // What is settled and on record leaves the journal: told again after other acts, it would contradict them.
  if (unsettled.empty()) {
    static_cast<void>(files.remove(path));
  } else if (unsettled != *text) {
    static_cast<void>(files.writeAtomically(path, unsettled));
  }
}

}  // namespace

void recoverInterruptedActs(DurableFiles& files, ScanStore& store, Trash& trash) {
  const std::string folder = CleanupJournal::folder(store.support());
  files.removeRemains(store.support());
  files.removeRemains(folder);
  auto names = files.names(folder);
  if (!names) {
    return;
  }
  std::erase_if(*names, [](const std::string& name) { return !name.ends_with(CleanupJournal::fileExtension); });
  if (names->empty()) {
    return;
  }
  const auto lock = files.lock(CleanupJournal::lockPath(store.support()));
  if (!lock && !lock.error().isWithoutLocks()) {
    return;
  }
  for (const std::string& name : *names) {
    const std::string path = appendingPathComponent(folder, name);
    if (!files.isGrowing(path)) {
      recoverJournal(path, files, store, trash);
    }
  }
}

}  // namespace lumenary
