#pragma once

#include <cstdint>

#include "base/Date.h"
#include "storage/StorageCategory.h"

namespace lumenary {

/// One line of the history of scans.
struct ScanHistoryPoint {
  Date date;
  std::int64_t usedBytes = 0;
  CategoryTotals categoryTotals;

  bool operator==(const ScanHistoryPoint&) const = default;
};

}  // namespace lumenary
