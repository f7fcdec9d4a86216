#include "cleanup/command/Selection.h"

#include <utility>

#include "base/StableSort.h"

namespace lumenary::CleanupCommand {

std::vector<CleanupCandidate> selection(std::span<const CleanupCandidate> candidates,
                                        const DeveloperScanner::LastUsed& lastUsed, std::optional<std::int64_t> days,
                                        Date now) {
  if (!days) {
    return stableSorted(std::vector(candidates.begin(), candidates.end()),
                        [](const CleanupCandidate& candidate) { return -candidate.byteCount; });
  }
  const auto dateOf = [&](const CleanupCandidate& candidate) {
    const auto date = lastUsed.find(candidate.url.path);
    return date == lastUsed.end() ? Date::max() : date->second;
  };
  return stableSorted(DeveloperScanner::untouched(candidates, lastUsed, *days, now), dateOf);
}

}  // namespace lumenary::CleanupCommand
