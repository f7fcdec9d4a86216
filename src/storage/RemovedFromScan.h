#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "storage/StorageScanResult.h"

namespace lumenary {

/// What left the place that a scan saw it in.
struct RemovedItem {
  std::string path;            ///< standardised
  std::int64_t byteCount = 0;  ///< of its entry; a folder's own total counts where the scan has one
};

/// The scan as if these had not been there, so that numbers fall without a scan of the disk; what lies outside of it
/// doesn't count. What was not measured
/// stays as it was, no sum falls below 0, and the tree is made anew.
StorageScanResult withoutRemoved(const StorageScanResult& result, std::span<const RemovedItem> removed);

}  // namespace lumenary
