#include <algorithm>
#include <utility>

#include "base/CheckedSum.h"
#include "core/AppModel.h"

// The record of acts, and the way back.

namespace lumenary {
namespace {

using Item = CleanupTransaction::Item;

bool isUndoable(const Item& item) { return item.outcome == Item::Outcome::movedToTrash && item.trashURL; }

}  // namespace

/// Nothing of the offer is in the Trash any more: it was put back, or emptied by whomever.
void AppModel::dropEmptyOffer() {
  const auto& offered = *lastTrash;
  const auto& log = *cleanupTransactions;
  const auto act = offered ? std::ranges::find(log, offered->transactionID, &CleanupTransaction::id) : log.end();
  if (act != log.end() && std::ranges::none_of(act->items, isUndoable)) {
    lastTrash.set(std::nullopt);
  }
}

void AppModel::publishLog(std::vector<CleanupTransaction> log, LogState state) {
  const auto put = [](std::vector<CleanupTransaction>& list, const CleanupTransaction& transaction) {
    const auto listed = std::ranges::find(list, transaction.id, &CleanupTransaction::id);
    if (listed == list.end()) {
      list.push_back(transaction);
    } else {
      *listed = transaction;
    }
  };
  if (state == LogState::unsaved) {
    std::vector<CleanupTransaction> shown = *cleanupTransactions;
    for (const CleanupTransaction& transaction : log) {
      if (std::ranges::find(shown, transaction) == shown.end()) {
        put(shown, transaction);
        put(unsavedTransactions_, transaction);
      }
    }
    cleanupTransactions.setIfChanged(std::move(shown));
    return;
  }
  std::erase_if(unsavedTransactions_, [&](const CleanupTransaction& unsaved) {
    const auto found = std::ranges::find(log, unsaved.id, &CleanupTransaction::id);
    return found != log.end() && (state == LogState::written || *found == unsaved);
  });
  for (const CleanupTransaction& unsaved : unsavedTransactions_) {
    put(log, unsaved);
  }
  cleanupTransactions.setIfChanged(std::move(log));
  dropEmptyOffer();
}

void AppModel::publishDone(CleanupActs::Done done, Records& records) {
  if (!done.transaction) {
    return;
  }
  publishLog(std::move(done.log), written(done.isSaved));
  records.acts.push_back(*std::move(done.transaction));
  if (!records.isOnePress) {
    offerUndo(records);
  }
}

/// Of several acts the last one gives its id to the offer; its undo takes all of them back.
void AppModel::offerUndo(const Records& records, UndoManager::Cause cause) {
  std::vector<UUID> ids;
  UndoableTrash offer;
  for (const CleanupTransaction& transaction : records.acts) {
    for (const Item& item : transaction.items) {
      if (isUndoable(item)) {
        ++offer.count;
        offer.bytes = saturatedSum(offer.bytes, item.measuredBytes);
        offer.transactionID = transaction.id;
      }
    }
    ids.push_back(transaction.id);
  }
  if (offer.count == 0) {
    return;
  }
  lastTrash.set(offer);
  const std::string name =
      offer.count == 1 ? "Move to Trash" : "Move " + std::to_string(offer.count) + " Items to Trash";
  undoManager_.registerUndo(
      name,
      [this, ids, name] {
        undoManager_.registerUndo(name, [this, ids] {
          for (const UUID& id : ids) {
            run(redoTrash(id));
          }
        });
        for (const UUID& id : ids) {
          run(undoAndTell(id));
        }
      },
      cause);
}

Task<> AppModel::undoAndTell(UUID transactionID) {
  if (auto failure = co_await undoTrash(transactionID)) {
    showNotice(std::move(failure));
  }
}

Task<std::optional<std::string>> AppModel::undoTrash(UUID transactionID) {
  auto undone = co_await scheduler_.start(
      Lane::acts, [engine = engine_, transactionID, known = *cleanupTransactions](const std::stop_token&) {
        return engine->acts.undo(transactionID, known);
      });
  publishLog(std::move(undone.log), written(undone.isSaved));
  putBack_[transactionID].merge(undone.putBack);
  if (const auto& offered = *lastTrash; offered && offered->transactionID == transactionID) {
    lastTrash.set(std::nullopt);
  }
  monitoring_.restart();
  co_return undone.failure;
}

Task<std::optional<std::string>> AppModel::restoreCleanupItem(UUID transactionID, UUID itemID) {
  auto undone = co_await scheduler_.start(
      Lane::acts, [engine = engine_, transactionID, itemID, known = *cleanupTransactions](const std::stop_token&) {
        return engine->acts.restore(transactionID, itemID, known);
      });
  publishLog(std::move(undone.log), written(undone.isSaved));
  putBack_[transactionID].merge(undone.putBack);
  monitoring_.restart();
  co_return undone.failure;
}

Task<> AppModel::redoTrash(UUID transactionID) {
  auto done = co_await scheduler_.start(
      Lane::acts, [engine = engine_, transactionID, putBack = putBack_[transactionID]](const std::stop_token&) {
        return engine->acts.redo(transactionID, putBack);
      });
  putBack_.erase(transactionID);
  Records records{.isOnePress = true};
  publishDone(std::move(done), records);
  offerUndo(records, UndoManager::Cause::redo);
  monitoring_.restart();
}

Task<TrashEmptyResult> AppModel::emptyTrash(EmptyingProgress progress, std::stop_source stop) {
  const auto tell = [alive = std::weak_ptr(lifetime_), progress = std::move(progress), &owner = owner()](
                        std::size_t done, std::size_t of) {
    owner.post([alive, progress, done, of] {
      if (!alive.expired() && progress) {
        progress(done, of);
      }
    });
  };
  auto emptied = co_await scheduler_.start(
      Lane::acts,
      [engine = engine_, tell](const std::stop_token& token) {
        return engine->acts.empty(*engine->platform.trashBin, tell, token);
      },
      std::move(stop));
  publishLog(std::move(emptied.log), written(emptied.isSaved));
  refreshVolumeSnapshot();
  refreshTrashSize();
  monitoring_.restart();
  co_return emptied.result;
}

std::int64_t AppModel::confirmedReclaimedBytes() const {
  std::int64_t bytes = 0;
  for (const CleanupTransaction& transaction : *cleanupTransactions) {
    for (const Item& item : transaction.items) {
      bytes = item.outcome == Item::Outcome::emptied ? saturatedSum(bytes, item.measuredBytes) : bytes;
    }
  }
  return bytes;
}

/// The command may have written a record, or another window.
Task<> AppModel::reloadLog() {
  auto log = co_await scheduler_.start(
      Lane::acts, [engine = engine_](const std::stop_token&) { return engine->store.readCleanupTransactions(); });
  if (log) {
    publishLog(*std::move(log), LogState::read);
  }
}

}  // namespace lumenary
