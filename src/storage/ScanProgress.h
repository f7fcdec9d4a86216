#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "storage/StorageCategory.h"

namespace lumenary {

/// How far a scan has come.
struct ScanProgress {
  std::int64_t itemCount = 0;
  std::string currentPath;  ///< the last folder finished
  std::int64_t measuredBytes = 0;
  CategoryTotals categoryByteTotals;

  bool operator==(const ScanProgress&) const = default;
};

/// Called from the scan's threads, one call at a time, at most four times a second and once at the end. It must only
/// pass the value on: the scan waits for it.
using ScanProgressCallback = std::function<void(const ScanProgress&)>;

}  // namespace lumenary
