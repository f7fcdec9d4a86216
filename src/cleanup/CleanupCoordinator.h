#pragma once

#include <cstdint>
#include <expected>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

#include "cleanup/CleanupCandidate.h"
#include "cleanup/CleanupJournal.h"
#include "cleanup/CleanupRefusal.h"
#include "platform/FileReader.h"
#include "platform/Places.h"
#include "platform/Trash.h"

namespace lumenary {

/// The last gate in front of the Trash for build output: each candidate is checked against the disk right before it
/// moves, one after the other. Blocks.
class CleanupCoordinator {
 public:
  CleanupCoordinator(const FileReader& reader, Trash& trash, const Places& places)
      : reader_(reader), trash_(trash), home_(places.home), userID_(places.userID) {}

  /// A candidate that passed, held through its opened parent: the move acts on this and on nothing else.
  struct Validated {
    OpenedItem item;
    std::int64_t allocatedBytes = 0;
  };

  /// Whether the candidate may go. The order of the checks decides which sentence a person reads; the one that costs a
  /// walk stands last.
  std::expected<Validated, CleanupRefusal> validate(const CleanupCandidate& candidate) const;

  /// Checks one candidate and moves it. The journal's line carries the outcome's id as item id and `transactionID`: a
  /// record made of the outcome must use the same. The Trash's list of sizes is left to the caller.
  CleanupOutcome moveToTrash(const CleanupCandidate& candidate, const UUID& transactionID,
                             CleanupJournal& journal) const;

  /// The same for each in order, exactly one outcome a candidate; a refusal stops nothing. After a stop request the
  /// rest stays, each with an outcome that says so.
  std::vector<CleanupOutcome> moveToTrash(std::span<const CleanupCandidate> candidates, const UUID& transactionID,
                                          CleanupJournal& journal, const std::stop_token& stop = {}) const;

  /// The candidates that are still folders, with fresh sizes and identities.
  std::vector<CleanupCandidate> remeasure(std::span<const CleanupCandidate> candidates) const;

 private:
  std::expected<TrashedItem, CleanupRefusal> move(const CleanupCandidate& candidate, IntentRecorder& recorder) const;
  std::expected<OpenedItem, CleanupRefusal> openFolder(const std::string& path) const;
  bool isFolder(const std::string& path) const;

  const FileReader& reader_;
  Trash& trash_;
  std::string home_;
  std::uint32_t userID_;
};

/// "developer." and the last path component: the rule under which build output is recorded.
std::string developerRuleID(const FileURL& url);

}  // namespace lumenary
