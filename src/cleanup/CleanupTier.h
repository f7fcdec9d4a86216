#pragma once

#include <cstdint>

#include "cleanup/CleanupCatalog.h"
#include "cleanup/StorageTrashGate.h"
#include "storage/FileEntry.h"

namespace lumenary {

/// In which of three lists an item is offered.
enum class CleanupTier : std::uint8_t {
  recommended = 0,
  review = 1,
  managed = 2,  ///< not to be removed here
};

CleanupTier cleanupTier(const FileEntry& entry, const CleanupCatalog& catalog, const StorageTrashGate& gate);

}  // namespace lumenary
