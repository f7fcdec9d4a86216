#pragma once

#include <expected>
#include <functional>

#include "base/FileURL.h"
#include "cleanup/CleanupCandidate.h"
#include "cleanup/CleanupJournal.h"
#include "cleanup/CleanupRefusal.h"
#include "platform/Trash.h"

namespace lumenary {

/// Checks an item and moves it, taking the intent down by the recorder before anything changes.
using RecordedMove = std::function<std::expected<TrashedItem, CleanupRefusal>(IntentRecorder& recorder)>;

/// One move to the Trash with all that is written down about it: `entry`'s item id is the outcome's. What the move left
/// unsettled keeps the journal for recovery.
CleanupOutcome attemptMove(const FileURL& url, const JournalEntry& entry, CleanupJournal& journal,
                           const RecordedMove& move);

}  // namespace lumenary
