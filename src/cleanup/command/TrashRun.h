#pragma once

#include <cstddef>
#include <span>

#include "cleanup/CleanupCandidate.h"
#include "cleanup/command/Listing.h"
#include "platform/Platform.h"

namespace lumenary::CleanupCommand {

struct TrashRun {
  MoveResults results;
  std::size_t attempted = 0;     ///< so many of the selected, from the first on; fewer than all after a stop request
  bool isRecordPending = false;  ///< something moved, and the log doesn't tell it before the next run
};

/// Moves the selected folders one by one and adds one transaction to the log. A folder that can't go stops nothing. A
/// stop request lets the move in hand end and is obeyed before the next. An empty selection leaves the disk as it is.
TrashRun moveToTrash(std::span<const CleanupCandidate> selected, Platform& platform);

}  // namespace lumenary::CleanupCommand
