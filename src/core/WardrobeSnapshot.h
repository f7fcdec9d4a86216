#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cleanup/StorageTrashGate.h"
#include "storage/StorageScanResult.h"
#include "storage/VolumeSnapshot.h"

namespace lumenary {

/// The words by which a category stands in wardrobe and closet.
struct CategoryWords {
  std::string_view title;
  std::string_view detail;
};
CategoryWords wordsOf(StorageCategory category);

struct WardrobeCompartment {
  enum class Kind : std::uint8_t { category, available, unmeasured };

  Kind kind = Kind::category;
  std::optional<StorageCategory> category{};  ///< of that kind
  std::string title;
  std::string detail;
  std::int64_t measuredBytes = 0;
  double visualWeight = 0;              ///< its share of the whole, 0 to 1
  std::int64_t candidateBytes = 0;      ///< of the listed files that may be offered for removal
  std::vector<FileEntry> topEntries{};  ///< the largest, at most eight

  /// "category-Caches", "capacity-available", "capacity-unmeasured".
  std::string id() const;
};

/// A scan and its volume by compartments: the categories in their order, what is available, what wasn't measured.
struct WardrobeSnapshot {
  WardrobeSnapshot(const StorageScanResult& result, const VolumeSnapshot& volume, const StorageTrashGate& gate);

  std::vector<WardrobeCompartment> compartments;
  std::int64_t measuredBytes = 0;
  std::int64_t usedBytes = 0;
  std::int64_t availableBytes = 0;
  std::int64_t unmeasuredBytes = 0;
  std::int64_t candidateBytes = 0;
  std::size_t inaccessibleCount = 0;
  bool isCompleteScan = false;
};

}  // namespace lumenary
