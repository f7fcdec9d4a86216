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

/// What the disk could not take stays on the list until it can.
void AppModel::publishLog(std::vector<CleanupTransaction> log) {
  for (CleanupTransaction& unsaved : unsavedTransactions_) {
    if (const auto listed = std::ranges::find(log, unsaved.id, &CleanupTransaction::id); listed != log.end()) {
      unsaved = *listed;
    } else {
      log.push_back(unsaved);
    }
  }
  cleanupTransactions.setIfChanged(std::move(log));
}

void AppModel::publishDone(CleanupActs::Done done, Records& records) {
  if (!done.transaction) {
    return;
  }
  publishLog(std::move(done.log));
  if (!done.isSaved) {
    unsavedTransactions_.push_back(*done.transaction);
  }
  records.push_back(*std::move(done.transaction));
}

void AppModel::offerUndo(const Records& records) {
  if (records.size() != 1) {
    return;
  }
  const CleanupTransaction& transaction = records.front();
  const auto count = static_cast<std::size_t>(std::ranges::count_if(transaction.items, isUndoable));
  if (count == 0) {
    return;
  }
  const UUID id = transaction.id;
  lastTrash.set(UndoableTrash{.transactionID = id, .count = count, .bytes = transaction.movedBytes()});
  const std::string name = count == 1 ? "Move to Trash" : "Move " + std::to_string(count) + " Items to Trash";
  undoManager_.registerUndo(name, [this, id, name] {
    undoManager_.registerUndo(name, [this, id] { run(redoTrash(id)); });
    run(undoAndTell(id));
  });
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
  publishLog(std::move(undone.log));
  putBack_.insert_or_assign(transactionID, std::move(undone.putBack));
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
  publishLog(std::move(undone.log));
  monitoring_.restart();
  co_return undone.failure;
}

Task<> AppModel::redoTrash(UUID transactionID) {
  auto done = co_await scheduler_.start(
      Lane::acts, [engine = engine_, transactionID, putBack = putBack_[transactionID]](const std::stop_token&) {
        return engine->acts.redo(transactionID, putBack);
      });
  Records records;
  publishDone(std::move(done), records);
  offerUndo(records);
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
  publishLog(std::move(emptied.log));
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
  publishLog(co_await scheduler_.start(
      Lane::acts, [engine = engine_](const std::stop_token&) { return engine->store.loadCleanupTransactions(); }));
}

}  // namespace lumenary
