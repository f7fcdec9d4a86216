#include "cleanup/CleanupHistory.h"

#include <algorithm>
#include <utility>

#include "cleanup/CleanupJournal.h"
#include "cleanup/CleanupRecovery.h"

namespace lumenary {
namespace {

using Item = CleanupTransaction::Item;
using Outcome = Item::Outcome;

constexpr auto recordGone = "The cleanup record no longer exists.";

}  // namespace

void CleanupHistory::load(const std::vector<CleanupTransaction>& known) {
  recoverInterruptedActs(files_, store_, trash_);
  transactions_ = store_.loadCleanupTransactions();
  std::ranges::copy_if(known, std::back_inserter(transactions_), [log = transactions_](const auto& transaction) {
    return std::ranges::find(log, transaction.id, &CleanupTransaction::id) == log.end();
  });
}

const CleanupTransaction* CleanupHistory::find(const UUID& transactionID) const {
  const auto found = std::ranges::find(transactions_, transactionID, &CleanupTransaction::id);
  return found == transactions_.end() ? nullptr : &*found;
}

std::optional<std::string> CleanupHistory::restoreCleanupItem(const UUID& transactionID, const UUID& itemID) {
  const CleanupTransaction* transaction = find(transactionID);
  if (transaction == nullptr) {
    return recordGone;
  }
  CleanupTransaction asked = *transaction;
  std::erase_if(asked.items, [&](const Item& item) { return item.id != itemID; });
  if (asked.items.empty()) {
    return recordGone;
  }
  const auto failures = putBack(asked);
  return failures.empty() ? std::nullopt : std::optional(failures.front());
}

std::optional<std::string> CleanupHistory::undoTrash(const UUID& transactionID) {
  const CleanupTransaction* transaction = find(transactionID);
  if (transaction == nullptr) {
    return "Nothing to undo.";
  }
  CleanupTransaction asked = *transaction;
  std::erase_if(asked.items, [](const Item& item) { return item.outcome != Outcome::movedToTrash; });
  const auto failures = putBack(asked);
  if (failures.empty()) {
    return std::nullopt;
  }
  const std::string things = failures.size() == 1 ? " item" : " items";
  return std::to_string(failures.size()) + things + " couldn't go back. " + failures.front();
}

/// Puts all items of `asked` back one after the other, then writes the log once; the journal covers a crash in between.
/// The sentences of those that failed.
std::vector<std::string> CleanupHistory::putBack(const CleanupTransaction& asked) {
  CleanupJournal journal(files_, store_.support());
  std::vector<std::string> failures;
  std::set<UUID> restored;
  for (const Item& item : asked.items) {
    if (item.outcome != Outcome::movedToTrash || !item.trashURL) {
      failures.push_back(TrashError{.refusal = TrashRefusal::notInTrash}.description());
      continue;
    }
    CleanupJournal::Recorder recorder(journal, {.act = JournalEntry::Act::restore,
                                                .transactionID = asked.id,
                                                .itemID = item.id,
                                                .source = asked.source,
                                                .ruleID = item.ruleID,
                                                .measuredBytes = item.measuredBytes,
                                                .intent = {}});
    const auto moved = trash_.putBack(item.trashURL->path, item.originalURL.path, asked.timestamp, recorder);
    if (!(moved ? moved->isSettled : moved.error().isSettled)) {
      journal.keepForRecovery();
    }
    if (moved) {
      restored.insert(item.id);
    } else {
      failures.push_back(moved.error().description());
    }
  }
  if (!restored.empty()) {
    isSaved_ = recordRestored(asked.id, restored);
    if (!isSaved_) {
      journal.keepForRecovery();
    }
    trash_.writeSizes();
  }
  journal.finish();
  return failures;
}

/// False where the log on the disk doesn't tell it. The list in memory tells it either way.
bool CleanupHistory::recordRestored(const UUID& transactionID, const std::set<UUID>& itemIDs) {
  bool isFound = false;
  const auto change = [&](std::vector<CleanupTransaction>& transactions) {
    const auto transaction = std::ranges::find(transactions, transactionID, &CleanupTransaction::id);
    isFound = transaction != transactions.end();
    if (!isFound) {
      return;
    }
    for (Item& item : transaction->items) {
      if (itemIDs.contains(item.id)) {
        item.markRestored();
      }
    }
  };
  auto saved = store_.updateCleanupTransactions(change);
  if (saved.isSaved && isFound) {
    transactions_ = std::move(saved.transactions);
    return true;
  }
  change(transactions_);
  return false;
}

}  // namespace lumenary
