#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/UUID.h"
#include "platform/DurableFiles.h"
#include "platform/Trash.h"
#include "storage/ScanStore.h"

namespace lumenary {

/// The acts on record, and the way back. Blocks; one thread at a time.
class CleanupHistory {
 public:
  CleanupHistory(DurableFiles& files, ScanStore& store, Trash& trash) : files_(files), store_(store), trash_(trash) {}

  /// Reads the log again, after what a crash or a full disk left out of it was put right. Of `known`, what the log
  /// doesn't hold is on record as well.
  void load(const std::vector<CleanupTransaction>& known = {});

  const std::vector<CleanupTransaction>& cleanupTransactions() const { return transactions_; }
  /// Whether the log on the disk tells what was put back last, and that is the list above.
  bool isSaved() const { return isSaved_; }

  /// Puts one item back where it stood. No value on success, otherwise the sentence for the person; then nothing has
  /// changed.
  std::optional<std::string> restoreCleanupItem(const UUID& transactionID, const UUID& itemID);

  /// Puts back all items of a transaction that are in the Trash. No value where all came back or there were none.
  std::optional<std::string> undoTrash(const UUID& transactionID);

 private:
  const CleanupTransaction* find(const UUID& transactionID) const;
  std::vector<std::string> putBack(const CleanupTransaction& asked);
  bool recordRestored(const UUID& transactionID, const std::set<UUID>& itemIDs);

  DurableFiles& files_;
  ScanStore& store_;
  Trash& trash_;
  std::vector<CleanupTransaction> transactions_;
  bool isSaved_ = false;
};

}  // namespace lumenary
