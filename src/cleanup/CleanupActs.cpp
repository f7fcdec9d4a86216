#include "cleanup/CleanupActs.h"

#include <algorithm>
#include <set>
#include <utility>

#include "cleanup/CleanupCoordinator.h"
#include "cleanup/CleanupHistory.h"
#include "cleanup/CleanupRecovery.h"
#include "cleanup/EmptiedItems.h"
#include "cleanup/MoveAttempt.h"
#include "storage/AllocatedSize.h"

namespace lumenary {
namespace {

using Item = CleanupTransaction::Item;
using Outcome = Item::Outcome;
using Transactions = CleanupActs::Transactions;

CleanupTransaction newTransaction(CleanupTransaction::Source source) {
  return {.id = UUID::random(), .timestamp = {}, .source = source, .items = {}};
}

Item itemOf(const CleanupOutcome& outcome, std::int64_t measuredBytes, std::string ruleID) {
  return {.id = outcome.id,
          .originalURL = outcome.url,
          .trashURL = outcome.trashURL,
          .measuredBytes = measuredBytes,
          .ruleID = std::move(ruleID),
          .outcome = outcome.success ? Outcome::movedToTrash : Outcome::failed,
          .message = outcome.message};
}

const CleanupTransaction* find(const Transactions& log, const UUID& id) {
  const auto found = std::ranges::find(log, id, &CleanupTransaction::id);
  return found == log.end() ? nullptr : &*found;
}

}  // namespace

CleanupActs::Done CleanupActs::finish(std::vector<CleanupOutcome> outcomes, CleanupTransaction transaction,
                                      CleanupJournal& journal) const {
  if (transaction.items.empty()) {
    return {.outcomes = std::move(outcomes)};
  }
  // The clock may have been set back meanwhile.
  const Date now = tools_.now();
  transaction.timestamp = std::max(now, journal.lastIntended().value_or(now));
  auto saved = tools_.store.appendCleanupTransaction(transaction);
  if (saved.isSaved) {
    journal.finish();
  }
  return {.outcomes = std::move(outcomes),
          .transaction = std::move(transaction),
          .log = std::move(saved.transactions),
          .isSaved = saved.isSaved};
}

CleanupActs::Done CleanupActs::clean(std::span<const CleanupCandidate> candidates) const {
  CleanupTransaction transaction = newTransaction(CleanupTransaction::Source::buildCleanup);
  CleanupJournal journal(tools_.files, tools_.store.support());
  const CleanupCoordinator coordinator(tools_.reader, tools_.trash, tools_.places);
  auto outcomes = coordinator.moveToTrash(candidates, transaction.id, journal);
  for (std::size_t index = 0; index < outcomes.size(); ++index) {
    transaction.items.push_back(
        itemOf(outcomes[index], candidates[index].byteCount, developerRuleID(outcomes[index].url)));
  }
  return finish(std::move(outcomes), std::move(transaction), journal);
}

CleanupActs::Done CleanupActs::remove(std::span<const StorageMove> moves, CleanupTransaction::Source source,
                                      const StorageTrashGate& gate, const std::stop_token& stop) const {
  CleanupTransaction transaction = newTransaction(source);
  CleanupJournal journal(tools_.files, tools_.store.support());
  const StorageTrashCoordinator coordinator(tools_.reader, tools_.contents, tools_.trash, gate, tools_.places);
  auto outcomes = coordinator.moveToTrash(moves, source, transaction.id, journal, stop);
  for (std::size_t index = 0; index < outcomes.size(); ++index) {
    const FileEntry& entry = moves[index].entry;
    transaction.items.push_back(itemOf(outcomes[index], entry.byteCount, storageRuleID(source, entry.category)));
  }
  return finish(std::move(outcomes), std::move(transaction), journal);
}

/// Where what was put back of a transaction stands now.
CleanupActs::PutBack CleanupActs::standing(const CleanupTransaction* transaction) const {
  PutBack standing;
  if (transaction == nullptr) {
    return standing;
  }
  for (const Item& item : transaction->items) {
    if (item.outcome != Outcome::restored) {
      continue;
    }
    if (const auto found = tools_.reader.attributes(item.originalURL.path, LinkPolicy::refuse)) {
      standing.emplace(item.id, found->identity);
    }
  }
  return standing;
}

CleanupActs::Undone CleanupActs::undo(const UUID& transactionID, const Transactions& known) const {
  CleanupHistory history(tools_.files, tools_.store, tools_.trash);
  history.load(known);
  auto failure = history.undoTrash(transactionID);
  const Transactions& log = history.cleanupTransactions();
  return {.failure = std::move(failure), .log = log, .putBack = standing(find(log, transactionID))};
}

CleanupActs::Undone CleanupActs::restore(const UUID& transactionID, const UUID& itemID,
                                         const Transactions& known) const {
  CleanupHistory history(tools_.files, tools_.store, tools_.trash);
  history.load(known);
  auto failure = history.restoreCleanupItem(transactionID, itemID);
  return {.failure = std::move(failure), .log = history.cleanupTransactions()};
}

CleanupOutcome CleanupActs::moveAgain(const Item& item, const CleanupTransaction& again, const PutBack& putBack,
                                      CleanupJournal& journal) const {
  const auto move = [&](IntentRecorder& recorder) -> std::expected<TrashedItem, CleanupRefusal> {
    const auto opened = openItem(tools_.reader, item.originalURL.path);
    if (!opened) {
      return std::unexpected(opened.error());
    }
    const auto meant = putBack.find(item.id);
    if (meant == putBack.end() || meant->second != opened->identity) {
      return std::unexpected(CleanupSafetyError::changedSize);
    }
    const std::int64_t bytes = allocatedSize(tools_.reader, item.originalURL.path);
    auto moved = tools_.trash.move(*opened, bytes, recorder);
    if (!moved) {
      return std::unexpected(moved.error());
    }
    return *std::move(moved);
  };
  return attemptMove(item.originalURL,
                     {.act = JournalEntry::Act::move,
                      .transactionID = again.id,
                      .itemID = UUID::random(),
                      .source = again.source,
                      .ruleID = item.ruleID,
                      .measuredBytes = item.measuredBytes,
                      .intent = {}},
                     journal, move);
}

CleanupActs::Done CleanupActs::redo(const UUID& transactionID, const PutBack& putBack) const {
  recoverInterruptedActs(tools_.files, tools_.store, tools_.trash);
  const Transactions log = tools_.store.loadCleanupTransactions();
  const CleanupTransaction* const former = find(log, transactionID);
  if (former == nullptr) {
    return {};
  }
  CleanupTransaction again = newTransaction(former->source);
  CleanupJournal journal(tools_.files, tools_.store.support());
  std::vector<CleanupOutcome> outcomes;
  for (const Item& item : former->items) {
    if (item.outcome == Outcome::restored) {
      outcomes.push_back(moveAgain(item, again, putBack, journal));
      again.items.push_back(itemOf(outcomes.back(), item.measuredBytes, item.ruleID));
    }
  }
  if (std::ranges::any_of(outcomes, &CleanupOutcome::success)) {
    tools_.trash.writeSizes();
  }
  return finish(std::move(outcomes), std::move(again), journal);
}

CleanupActs::Merged CleanupActs::merge(std::span<const UUID> ids) const {
  const std::set<UUID> wanted(ids.begin(), ids.end());
  const auto isWanted = [&](const CleanupTransaction& transaction) { return wanted.contains(transaction.id); };
  Merged merged;
  recoverInterruptedActs(tools_.files, tools_.store, tools_.trash);
  auto saved = tools_.store.updateCleanupTransactions([&](Transactions& transactions) {
    Transactions parts;
    std::ranges::copy_if(transactions, std::back_inserter(parts), isWanted);
    if (parts.empty()) {
      return;
    }
    std::erase_if(transactions, isWanted);
    const Date latest = std::ranges::max(parts, {}, &CleanupTransaction::timestamp).timestamp;
    merged.transaction = CleanupTransaction::merging(parts, std::max(latest, tools_.now()));
    transactions.push_back(*merged.transaction);
  });
  merged.log = std::move(saved.transactions);
  return merged;
}

CleanupActs::Emptied CleanupActs::empty(TrashBin& bin, const EmptyingProgress& progress,
                                        const std::stop_token& stop) const {
  Emptied emptied{.result = emptyTrash(bin, progress, stop)};
  if (emptied.result.kind == TrashEmptyResult::Kind::failed) {
    emptied.log = tools_.store.loadCleanupTransactions();
    return emptied;
  }
  // What a full disk kept out of the log has room now.
  recoverInterruptedActs(tools_.files, tools_.store, tools_.trash);
  auto saved = tools_.store.updateCleanupTransactions(
      [&](Transactions& transactions) { recordEmptied(transactions, tools_.reader, tools_.mountTable); });
  emptied.log = std::move(saved.transactions);
  return emptied;
}

}  // namespace lumenary
