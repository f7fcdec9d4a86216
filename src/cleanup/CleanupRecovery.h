#pragma once

#include "platform/DurableFiles.h"
#include "platform/Trash.h"
#include "storage/ScanStore.h"

namespace lumenary {

/// Puts right what processes that died in the middle of an act left behind: the Trash's info files agree with where
/// each item stands, and the log tells it. Acts that are still running are left alone. Safe to be killed and run again.
void recoverInterruptedActs(DurableFiles& files, ScanStore& store, Trash& trash);

}  // namespace lumenary
