#pragma once

#include <span>
#include <vector>

#include "platform/FileReader.h"
#include "platform/MountTable.h"
#include "storage/CleanupTransaction.h"

namespace lumenary {

/// After the Trash was emptied: what is on record as lying there and doesn't any more was either put back by somebody
/// or is gone. What lay on a drive that is away now, or can't be looked at, stays as it is on record. True where
/// anything changed.
bool recordEmptied(std::vector<CleanupTransaction>& transactions, const FileReader& reader,
                   const MountTable& mountTable);

}  // namespace lumenary
