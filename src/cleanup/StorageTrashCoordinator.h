#pragma once

#include <expected>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

#include "cleanup/CleanupCandidate.h"
#include "cleanup/CleanupJournal.h"
#include "cleanup/CleanupRefusal.h"
#include "cleanup/StorageTrashGate.h"
#include "platform/ContentReader.h"
#include "platform/FileReader.h"
#include "platform/Places.h"
#include "platform/Trash.h"
#include "storage/CleanupTransaction.h"
#include "storage/FileEntry.h"

namespace lumenary {

/// A scanned item that a person wants to go.
struct StorageMove {
  FileEntry entry;
  /// Of two copies the one that stays: the other goes only if both still hold the same bytes.
  std::optional<FileEntry> survivor{};
};

/// Moves scanned items to the Trash, each checked against the disk right before. Blocks: it may walk a folder, and
/// reads both copies of a duplicate.
class StorageTrashCoordinator {
 public:
  /// All references must outlive the value.
  StorageTrashCoordinator(const FileReader& reader, const ContentReader& contents, Trash& trash,
                          const StorageTrashGate& gate, const Places& places)
      : reader_(reader), contents_(contents), trash_(trash), gate_(gate), userID_(places.userID) {}

  /// Whether the entry may go, and what stands there, held through its opened parent. The size of a folder isn't
  /// measured again: its content is free to change.
  std::expected<OpenedItem, CleanupRefusal> validate(const FileEntry& entry) const;

  /// One outcome an item, in order; a refusal stops nothing. After a stop request the rest stays, each with an outcome
  /// that says so. The journal's lines carry the outcomes' ids as item ids and `transactionID`: a record made of the
  /// outcomes must use the same.
  std::vector<CleanupOutcome> moveToTrash(std::span<const StorageMove> moves, CleanupTransaction::Source source,
                                          const UUID& transactionID, CleanupJournal& journal,
                                          const std::stop_token& stop = {}) const;

 private:
  std::expected<TrashedItem, CleanupRefusal> move(const StorageMove& move, IntentRecorder& recorder,
                                                  const std::stop_token& stop) const;
  std::expected<OpenedItem, CleanupRefusal> openEntry(const FileEntry& entry) const;
  std::expected<void, CleanupRefusal> validateFile(const FileEntry& entry, const OpenedItem& item) const;
  std::expected<void, CleanupRefusal> validateFolder(const OpenedItem& item) const;
  std::expected<void, CleanupRefusal> compare(const OpenedItem& item, const FileEntry& survivor,
                                              const std::stop_token& stop) const;

  const FileReader& reader_;
  const ContentReader& contents_;
  Trash& trash_;
  const StorageTrashGate& gate_;
  std::uint32_t userID_;
};

/// Under which rule a scanned item is recorded: "storage.Caches", "tidy.Personal Files".
std::string storageRuleID(CleanupTransaction::Source source, StorageCategory category);

}  // namespace lumenary
