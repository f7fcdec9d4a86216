#include "cleanup/command/TrashRun.h"

#include <algorithm>
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

MoveResult resultOf(const CleanupOutcome& outcome) {
  return outcome.success ? MoveResult(outcome.trashURL) : std::unexpected(outcome.message);
}

/// A move without a known place can't be undone from here, so the log doesn't claim one.
Item itemOf(const CleanupCandidate& candidate, const CleanupOutcome& outcome) {
  return {.id = outcome.id,
          .originalURL = candidate.url,
          .trashURL = outcome.trashURL,
          .measuredBytes = candidate.byteCount,
          .ruleID = developerRuleID(candidate.url),
          .outcome = outcome.trashURL ? Item::Outcome::movedToTrash : Item::Outcome::failed,
          .message = outcome.message};
}

}  // namespace

TrashRun moveToTrash(std::span<const CleanupCandidate> selected, Platform& platform) {
  TrashRun run;
  // What an earlier run left is put right even where nothing is left to move.
  if (selected.empty() && !platform.files->names(CleanupJournal::folder(platform.places.support))) {
    return run;
  }
  ScanStore store(*platform.files, platform.places.support);
  recoverInterruptedActs(*platform.files, store, *platform.trash);

  const CleanupCoordinator coordinator(*platform.reader, *platform.trash, platform.places);
  CleanupJournal journal(*platform.files, platform.places.support);
  CleanupTransaction transaction{
      .id = UUID::random(), .timestamp = {}, .source = CleanupTransaction::Source::buildCleanup, .items = {}};
  const std::stop_token stop = platform.interruption->token();
  while (run.attempted < selected.size() && !stop.stop_requested()) {
    const CleanupCandidate& candidate = selected[run.attempted++];
    const CleanupOutcome outcome = coordinator.moveToTrash(candidate, transaction.id, journal);
    transaction.items.push_back(itemOf(candidate, outcome));
    run.results.insert_or_assign(candidate.url.path, resultOf(outcome));
  }
  platform.trash->writeSizes();
  if (run.attempted == 0) {
    return run;
  }
  // The clock may have been set back meanwhile.
  const Date now = platform.now();
  transaction.timestamp = std::max(now, journal.lastIntended().value_or(now));
  if (store.appendCleanupTransaction(transaction).isSaved) {
    journal.finish();
  } else {
    run.isRecordPending = std::ranges::any_of(run.results, [](const auto& entry) { return entry.second.has_value(); });
  }
  return run;
}

}  // namespace lumenary::CleanupCommand
