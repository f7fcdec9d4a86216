#pragma once

#include <functional>
#include <map>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

#include "cleanup/CleanupCandidate.h"
#include "cleanup/CleanupHistory.h"
#include "cleanup/CleanupJournal.h"
#include "cleanup/StorageTrashCoordinator.h"
#include "cleanup/StorageTrashGate.h"
#include "cleanup/TrashContents.h"
#include "platform/ContentReader.h"
#include "platform/DurableFiles.h"
#include "platform/FileReader.h"
#include "platform/MountTable.h"
#include "platform/Places.h"
#include "platform/Trash.h"
#include "platform/TrashBin.h"
#include "storage/CleanupTransaction.h"
#include "storage/ScanStore.h"

namespace lumenary {

/// Whole acts of a person: each thing passes its gate and moves, one journal covers all of them against a crash, and
/// one record tells of them. Blocks; one act at a time, of this value and of any other.
class CleanupActs {
 public:
  /// The references must outlive the value.
  struct Tools {
    const FileReader& reader;
    const ContentReader& contents;
    const MountTable& mountTable;
    const Places& places;
    Trash& trash;
    DurableFiles& files;
    ScanStore& store;
    std::function<Date()> now;
  };
  using Transactions = std::vector<CleanupTransaction>;

  explicit CleanupActs(Tools tools) : tools_(std::move(tools)) {}

  struct Done {
    std::vector<CleanupOutcome> outcomes;             ///< one a thing, in order
    std::optional<CleanupTransaction> transaction{};  ///< the record; none where nothing was asked for
    Transactions log{};                               ///< with the record; empty without one
    bool isSaved = false;                             ///< the log on the disk holds it
  };
  /// Build folders. After a stop request the rest stays, and the record says so.
  Done clean(std::span<const CleanupCandidate> candidates, const std::stop_token& stop = {}) const;
  /// Scanned things; the same.
  Done remove(std::span<const StorageMove> moves, CleanupTransaction::Source source, const StorageTrashGate& gate,
              const std::stop_token& stop = {}) const;

  /// Where the things that one act put back stand, by their items.
  using PutBack = std::map<UUID, FileIdentity>;
  struct Undone {
    std::optional<std::string> failure{};  ///< the sentence for the person; none where all came back
    Transactions log{};                    ///< where it isn't saved, the record in question alone
    bool isSaved = false;                  ///< it is the log on the disk
    PutBack putBack{};
  };
  /// `known` are the records as they were shown: one that the log on the disk doesn't hold counts as well.
  Undone undo(const UUID& transactionID, const Transactions& known) const;
  Undone restore(const UUID& transactionID, const UUID& itemID, const Transactions& known) const;
  /// Moves again what a transaction has put back, as a transaction of its own. What came to a place since then is not
  /// what `putBack` tells of, and stays.
  Done redo(const UUID& transactionID, const PutBack& putBack) const;

  struct Merged {
    std::optional<CleanupTransaction> transaction{};  ///< it is in the log on the disk
    Transactions log{};
  };
  /// Makes one transaction of those with these ids. None, and nothing changed, where not all of them are on record or
  /// the log can't be written.
  Merged merge(std::span<const UUID> ids) const;

  struct Emptied {
    TrashEmptyResult result;
    Transactions log{};
    bool isSaved = false;
  };
  /// Removes for good what is in the Trash, and writes down of what that was the end.
  Emptied empty(TrashBin& bin, const EmptyingProgress& progress, const std::stop_token& stop) const;

 private:
  using Item = CleanupTransaction::Item;
  Done finish(std::vector<CleanupOutcome> outcomes, CleanupTransaction transaction, CleanupJournal& journal) const;
  CleanupOutcome moveAgain(const Item& item, const CleanupTransaction& again, const PutBack& putBack,
                           CleanupJournal& journal) const;
  Undone undone(CleanupHistory& history, const UUID& transactionID,
                const std::function<std::optional<std::string>()>& act) const;
  PutBack standing(const CleanupTransaction* before, const CleanupTransaction* after) const;

  Tools tools_;
};

}  // namespace lumenary
