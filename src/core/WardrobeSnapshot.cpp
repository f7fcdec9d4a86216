#include "core/WardrobeSnapshot.h"

#include <algorithm>
#include <array>

#include "base/CheckedSum.h"

namespace lumenary {
namespace {

constexpr std::size_t shownEntries = 8;

double share(std::int64_t part, std::int64_t whole) {
  return whole < 1 ? 0 : static_cast<double>(part) / static_cast<double>(whole);
}

}  // namespace

CategoryWords wordsOf(StorageCategory category) {
  switch (category) {
    case StorageCategory::applications:
      return {.title = "Apps", .detail = "Installed applications"};
    case StorageCategory::developer:
      return {.title = "Developer tools", .detail = "Simulators, builds, and tools"};
    case StorageCategory::personal:
      return {.title = "Your files", .detail = "Documents, photos, video, and audio"};
    case StorageCategory::caches:
      return {.title = "Temporary files", .detail = "Files apps can usually recreate"};
    case StorageCategory::system:
      return {.title = "macOS & app support", .detail = "System and application data"};
    case StorageCategory::unclassified:
      break;
  }
  return {.title = "Other files", .detail = "Files that need a closer look"};
}

std::string WardrobeCompartment::id() const {
  switch (kind) {
    case Kind::available:
      return "capacity-available";
    case Kind::unmeasured:
      return "capacity-unmeasured";
    case Kind::category:
      break;
  }
  return "category-" + std::string(rawValue(category.value_or(StorageCategory::unclassified)));
}

WardrobeSnapshot::WardrobeSnapshot(const StorageScanResult& result, const VolumeSnapshot& volume,
                                   const StorageTrashGate& gate)
    : usedBytes(std::max<std::int64_t>(0, volume.totalBytes - volume.availableBytes)),
      availableBytes(volume.availableBytes),
      inaccessibleCount(result.inaccessiblePaths.size()),
      isCompleteScan(result.inaccessiblePaths.empty()) {
  const CategoryTotals totals = result.categoryTotals();
  for (const StorageCategory category : allStorageCategories) {
    const auto total = totals.find(category);
    const CategoryWords words = wordsOf(category);
    compartments.push_back({.kind = WardrobeCompartment::Kind::category,
                            .category = category,
                            .title = std::string(words.title),
                            .detail = std::string(words.detail),
                            .measuredBytes = total == totals.end() ? 0 : total->second});
    measuredBytes = saturatedSum(measuredBytes, compartments.back().measuredBytes);
  }
  for (const FileEntry& entry : result.entries) {
    WardrobeCompartment& compartment = compartments[static_cast<std::size_t>(entry.category)];
    if (compartment.topEntries.size() < shownEntries) {
      compartment.topEntries.push_back(entry);
    }
    if (gate.canMoveToTrash(entry)) {
      compartment.candidateBytes = saturatedSum(compartment.candidateBytes, entry.byteCount);
      candidateBytes = saturatedSum(candidateBytes, entry.byteCount);
    }
  }
  unmeasuredBytes = std::max<std::int64_t>(0, usedBytes - measuredBytes);
  compartments.push_back({.kind = WardrobeCompartment::Kind::available,
                          .title = "Available",
                          .detail = "Capacity ready for new files and applications.",
                          .measuredBytes = availableBytes});
  compartments.push_back({.kind = WardrobeCompartment::Kind::unmeasured,
                          .title = "Unmeasured",
                          .detail = isCompleteScan ? "Space used by system data that the file scan could not attribute."
                                                   : "Some locations were unavailable during the scan.",
                          .measuredBytes = unmeasuredBytes});
  std::int64_t whole = 0;
  for (const WardrobeCompartment& compartment : compartments) {
    whole = saturatedSum(whole, compartment.measuredBytes);
  }
  for (WardrobeCompartment& compartment : compartments) {
    compartment.visualWeight = share(compartment.measuredBytes, whole);
  }
}

}  // namespace lumenary
