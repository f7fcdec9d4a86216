#include "cleanup/MoveAttempt.h"

namespace lumenary {

CleanupOutcome attemptMove(const FileURL& url, const JournalEntry& entry, CleanupJournal& journal,
                           const RecordedMove& move) {
  CleanupJournal::Recorder recorder(journal, entry);
  const auto moved = move(recorder);
  if (!(moved ? moved->isSettled : isSettled(moved.error()))) {
    journal.keepForRecovery();
  }
  CleanupOutcome outcome{.id = entry.itemID,
                         .url = url,
                         .trashURL = {},
                         .success = moved.has_value(),
                         .message = moved ? "Moved to Trash" : description(moved.error())};
  if (!moved) {
    recorder.refused(outcome.message);
  } else if (!moved->trashPath.empty()) {
    outcome.trashURL = FileURL{.path = moved->trashPath, .isFolder = url.isFolder};
  }
  return outcome;
}

}  // namespace lumenary
