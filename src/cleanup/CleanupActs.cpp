#include "cleanup/CleanupActs.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <set>
#include <utility>

#include "cleanup/CleanupCoordinator.h"
#include "cleanup/CleanupRecovery.h"
#include "cleanup/EmptiedItems.h"
#include "cleanup/MoveAttempt.h"
#include "storage/AllocatedSize.h"

namespace lumenary {
namespace {

using Item = CleanupTransaction::Item;
using Outcome = Item::Outcome;
using Transactions = CleanupActs::Transactions;

/// The log keeps seconds.
Date asLogged(Date date) { return std::chrono::floor<std::chrono::seconds>(date); }

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
  transaction.timestamp = asLogged(std::max(now, journal.lastIntended().value_or(now)));
  auto saved = tools_.store.appendCleanupTransaction(transaction);
  if (saved.isSaved) {
    journal.finish();
  }
  return {.outcomes = std::move(outcomes),
          .transaction = std::move(transaction),
          .log = std::move(saved.transactions),
          .isSaved = saved.isSaved};
}

CleanupActs::Done CleanupActs::clean(std::span<const CleanupCandidate> candidates, const std::stop_token& stop) const {
  CleanupTransaction transaction = newTransaction(CleanupTransaction::Source::buildCleanup);
  CleanupJournal journal(tools_.files, tools_.store.support());
  const CleanupCoordinator coordinator(tools_.reader, tools_.trash, tools_.places);
  auto outcomes = coordinator.moveToTrash(candidates, transaction.id, journal, stop);
  for (std::size_t index = 0; index < outcomes.size(); ++index) {
    const CleanupCandidate& candidate = candidates[index];
    transaction.items.push_back(itemOf(outcomes[index], candidate.byteCount, developerRuleID(candidate.url)));
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

/// Where those items stand that were in the Trash before and have been put back since.
CleanupActs::PutBack CleanupActs::standing(const CleanupTransaction* before, const CleanupTransaction* after) const {
  PutBack standing;
  if (before == nullptr || after == nullptr) {
    return standing;
  }
  for (std::size_t index = 0; index < std::min(before->items.size(), after->items.size()); ++index) {
    const Item& item = after->items[index];
    if (before->items[index].outcome != Outcome::movedToTrash || item.outcome != Outcome::restored) {
      continue;
    }
    if (const auto found = tools_.reader.attributes(item.originalURL.path, LinkPolicy::refuse)) {
      standing.emplace(item.id, found->identity);
    }
  }
  return standing;
}

CleanupActs::Undone CleanupActs::undone(CleanupHistory& history, const UUID& transactionID,
                                        const std::function<std::optional<std::string>()>& act) const {
  const CleanupTransaction* const listed = find(history.cleanupTransactions(), transactionID);
  const auto before = listed == nullptr ? std::nullopt : std::optional(*listed);
  auto failure = act();
  const Transactions& log = history.cleanupTransactions();
  const CleanupTransaction* const after = find(log, transactionID);
  Undone undone{.failure = std::move(failure),
                .isSaved = history.isSaved(),
                .putBack = standing(before ? &*before : nullptr, after)};
  if (undone.isSaved) {
    undone.log = log;
  } else if (after != nullptr) {
    undone.log = {*after};
  }
  return undone;
}

CleanupActs::Undone CleanupActs::undo(const UUID& transactionID, const Transactions& known) const {
  CleanupHistory history(tools_.files, tools_.store, tools_.trash);
  history.load(known);
  return undone(history, transactionID, [&] { return history.undoTrash(transactionID); });
}

CleanupActs::Undone CleanupActs::restore(const UUID& transactionID, const UUID& itemID,
                                         const Transactions& known) const {
  CleanupHistory history(tools_.files, tools_.store, tools_.trash);
  history.load(known);
  return undone(history, transactionID, [&] { return history.restoreCleanupItem(transactionID, itemID); });
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
  recoverInterruptedActs(tools_.files, tools_.store, tools_.trash);
  const std::set<UUID> wanted(ids.begin(), ids.end());
  const auto isWanted = [&](const CleanupTransaction& transaction) { return wanted.contains(transaction.id); };
  Merged merged;
  auto saved = tools_.store.updateCleanupTransactions([&](Transactions& transactions) {
    Transactions parts;
    std::ranges::copy_if(transactions, std::back_inserter(parts), isWanted);
    if (parts.empty() || parts.size() != wanted.size()) {
      return;
    }
    std::erase_if(transactions, isWanted);
    const Date latest = std::ranges::max(parts, {}, &CleanupTransaction::timestamp).timestamp;
    merged.transaction = CleanupTransaction::merging(parts, asLogged(std::max(latest, tools_.now())));
    transactions.push_back(*merged.transaction);
  });
  if (!saved.isSaved) {
    merged.transaction.reset();
  }
  merged.log = std::move(saved.transactions);
  return merged;
}

CleanupActs::Emptied CleanupActs::empty(TrashBin& bin, const EmptyingProgress& progress,
                                        const std::stop_token& stop) const {
  Emptied emptied{.result = emptyTrash(bin, progress, stop)};
  if (emptied.result.kind == TrashEmptyResult::Kind::failed) {
    return emptied;
  }
  // What a full disk kept out of the log has room now.
  recoverInterruptedActs(tools_.files, tools_.store, tools_.trash);
  auto saved = tools_.store.updateCleanupTransactions(
      [&](Transactions& transactions) { recordEmptied(transactions, tools_.reader, tools_.mountTable); });
  emptied.log = std::move(saved.transactions);
  emptied.isSaved = saved.isSaved;
  return emptied;
}

}  // namespace lumenary
