#include "cleanup/command/Selection.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace lumenary::CleanupCommand {
namespace {

/// Smallest key first. (std::stable_sort of the C++ library in use can't be compiled without a warning.)
template <class Key>
std::vector<CleanupCandidate> sortedBy(Key key, std::span<const CleanupCandidate> candidates) {
  using Place = std::pair<decltype(key(candidates.front())), std::size_t>;
  std::vector<Place> places;
  for (const CleanupCandidate& candidate : candidates) {
    places.emplace_back(key(candidate), places.size());
  }
  std::ranges::sort(places);
  std::vector<CleanupCandidate> sorted;
  sorted.reserve(places.size());
  for (const auto& [unused, index] : places) {
    sorted.push_back(candidates[index]);
  }
  return sorted;
}

}  // namespace

std::vector<CleanupCandidate> selection(std::span<const CleanupCandidate> candidates,
                                        const DeveloperScanner::LastUsed& lastUsed, std::optional<std::int64_t> days,
                                        Date now) {
  if (!days) {
    return sortedBy([](const CleanupCandidate& candidate) { return -candidate.byteCount; }, candidates);
  }
  const auto dateOf = [&](const CleanupCandidate& candidate) {
    const auto date = lastUsed.find(candidate.url.path);
    return date == lastUsed.end() ? Date::max() : date->second;
  };
  return sortedBy(dateOf, DeveloperScanner::untouched(candidates, lastUsed, *days, now));
}

}  // namespace lumenary::CleanupCommand
