#include "cleanup/command/TrashRun.h"

#include <string>
#include <utility>
#include <vector>

#include "cleanup/CleanupCoordinator.h"
#include "cleanup/CleanupJournal.h"
#include "cleanup/CleanupRecovery.h"
#include "storage/CleanupTransaction.h"
#include "storage/ScanStore.h"

namespace lumenary::CleanupCommand {
namespace {

using Item = CleanupTransaction::Item;

constexpr auto source = CleanupTransaction::Source::buildCleanup;

MoveResult resultOf(const std::expected<TrashedItem, CleanupRefusal>& moved) {
  if (!moved) {
    return std::unexpected(description(moved.error()));
  }
  if (moved->trashPath.empty()) {
    return std::nullopt;
  }
  return FileURL{.path = moved->trashPath, .isFolder = true};
}

/// A move without a known place can't be undone from here, so the log doesn't claim one.
Item itemOf(const CleanupCandidate& candidate, const UUID& id, const MoveResult& result) {
  const std::optional<FileURL> trashURL = result.value_or(std::nullopt);
  return {.id = id,
          .originalURL = candidate.url,
          .trashURL = trashURL,
          .measuredBytes = candidate.byteCount,
          .ruleID = developerRuleID(candidate.url),
          .outcome = trashURL ? Item::Outcome::movedToTrash : Item::Outcome::failed,
          .message = result ? "Moved to Trash" : result.error()};
}

/// The moves of one run, and the transaction that tells of them.
class Moves {
 public:
  Moves(const CleanupCoordinator& coordinator, CleanupJournal& journal)
      : coordinator_(coordinator), journal_(journal) {}

  MoveResult moveToTrash(const CleanupCandidate& candidate) {
    const UUID id = UUID::random();
    CleanupJournal::Recorder recorder(journal_, {.act = JournalEntry::Act::move,
                                                 .transactionID = transactionID_,
                                                 .itemID = id,
                                                 .source = source,
                                                 .ruleID = developerRuleID(candidate.url),
                                                 .measuredBytes = candidate.byteCount,
                                                 .intent = {}});
    const auto moved = coordinator_.moveToTrash(candidate, recorder);
    if (!(moved ? moved->isSettled : isSettled(moved.error()))) {
      journal_.keepForRecovery();
    }
    MoveResult result = resultOf(moved);
    items_.push_back(itemOf(candidate, id, result));
    return result;
  }

  /// True once the log tells of every move that was tried; until then the journal stays.
  bool record(ScanStore& store, Date now) {
    if (items_.empty()) {
      return true;
    }
    const CleanupTransaction transaction{
        .id = transactionID_, .timestamp = now, .source = source, .items = std::move(items_)};
    const bool isSaved = store.appendCleanupTransaction(transaction).isSaved;
    if (isSaved) {
      journal_.finish();
    }
    return isSaved;
  }

 private:
  const CleanupCoordinator& coordinator_;
  CleanupJournal& journal_;
  const UUID transactionID_ = UUID::random();
  std::vector<Item> items_;
};

}  // namespace

TrashRun moveToTrash(std::span<const CleanupCandidate> selected, Platform& platform) {
  TrashRun run;
  if (selected.empty()) {
    return run;
  }
  ScanStore store(*platform.files, platform.places.support);
  recoverInterruptedActs(*platform.files, store, *platform.trash);

  const CleanupCoordinator coordinator(*platform.reader, *platform.trash, platform.places);
  CleanupJournal journal(*platform.files, platform.places.support);
  Moves moves(coordinator, journal);
  const std::stop_token stop = platform.interruption->token();
  while (run.attempted < selected.size() && !stop.stop_requested()) {
    const CleanupCandidate& candidate = selected[run.attempted++];
    run.results.insert_or_assign(candidate.url.path, moves.moveToTrash(candidate));
  }
  platform.trash->writeSizes();
  // Without a home nothing has moved, and there is no place for a record.
  run.isRecordSaved = !platform.places.support.empty() && moves.record(store, platform.now());
  return run;
}

}  // namespace lumenary::CleanupCommand
