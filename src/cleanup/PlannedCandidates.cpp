#include "cleanup/PlannedCandidates.h"

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <string_view>

#include "base/Path.h"
#include "base/StableSort.h"

namespace lumenary {
namespace {

constexpr auto knownNames =
    std::to_array<std::string_view>({"__pycache__", ".next", "dist", "build", ".build", "DerivedData", "target"});

CleanupCandidate::Classification classificationOf(std::string_view path) {
  const bool isKnown = std::ranges::find(knownNames, lastPathComponent(path)) != knownNames.end();
  return isKnown ? CleanupCandidate::Classification::known : CleanupCandidate::Classification::review;
}

}  // namespace

std::vector<CleanupCandidate> buildCandidates(const TidyPlan* plan, std::span<const CleanupCandidate> former) {
  if (plan == nullptr) {
    return {};
  }
  std::map<std::string_view, UUID> ids;
  for (const CleanupCandidate& candidate : former) {
    ids.emplace(candidate.url.path, candidate.id);
  }
  std::vector<CleanupCandidate> candidates;
  for (const TidyItem& item : plan->items) {
    if (item.kind != TidyItem::Kind::buildFiles) {
      continue;
    }
    const auto known = ids.find(item.entry.url.path);
    candidates.push_back({.id = known == ids.end() ? UUID::random() : known->second,
                          .url = item.entry.url,
                          .byteCount = item.entry.byteCount,
                          .reason = item.title + ", found by the disk scan.",
                          .consequences = item.reason,
                          .classification = classificationOf(item.entry.url.path),
                          .identity = item.entry.identity});
  }
  return stableSorted(std::move(candidates), [](const auto& candidate) { return -candidate.byteCount; });
}

}  // namespace lumenary
