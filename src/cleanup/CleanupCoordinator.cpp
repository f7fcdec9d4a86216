#include "cleanup/CleanupCoordinator.h"

#include <algorithm>
#include <utility>

#include "base/Path.h"
#include "cleanup/DeveloperScanner.h"
#include "cleanup/MoveAttempt.h"
#include "storage/AllocatedSize.h"

namespace lumenary {
namespace {

using enum CleanupSafetyError;

constexpr std::size_t fewestComponents = 5;
std::unexpected<CleanupRefusal> refused(const CleanupRefusal& refusal) { return std::unexpected(refusal); }

}  // namespace

bool CleanupCoordinator::isFolder(const std::string& path) const {
  const auto attributes = reader_.attributes(path, LinkPolicy::follow);
  return attributes && attributes->identity.kind == FileKind::folder;
}

/// A link counts as what it leads to when existence is asked, and as a link afterwards.
std::expected<OpenedItem, CleanupRefusal> CleanupCoordinator::openFolder(const std::string& path) const {
  auto item = openItem(reader_, path);
  const bool isLink = item ? item->identity.kind == FileKind::link : item.error().isLink();
  if (isLink) {
    return refused(isFolder(path) ? symbolicLink : missing);
  }
  if (!item) {
    return item.error().isMissing() ? refused(missing) : refused(item.error());
  }
  if (item->identity.kind != FileKind::folder) {
    return refused(missing);
  }
  return *std::move(item);
}

std::expected<CleanupCoordinator::Validated, CleanupRefusal> CleanupCoordinator::validate(
    const CleanupCandidate& candidate) const {
  auto item = openFolder(candidate.url.path);
  if (!item) {
    return std::unexpected(item.error());
  }
  if (!DeveloperScanner::isArtifact(reader_, item->path) || item->path == standardise(home_) ||
      pathComponentCount(item->path) < fewestComponents ||
      !DeveloperScanner::nearestProjectRoot(reader_, item->path, "/")) {
    return refused(protectedPath);
  }
  if (candidate.identity && *candidate.identity != item->identity) {
    return refused(changedSize);
  }
  const Measurement measurement = measure(reader_, item->parent, item->name.c_str(), userID_);
  if (differsTooMuch(measurement.allocatedBytes, candidate.byteCount)) {
    return refused(changedSize);
  }
  if (measurement.holdsForeignFolder) {
    return refused(TrashError{.refusal = TrashRefusal::foreignInside});
  }
  if (measurement.holdsUnchangeable) {
    return refused(TrashError{.refusal = TrashRefusal::unchangeable});
  }
  return Validated{.item = *std::move(item), .allocatedBytes = measurement.allocatedBytes};
}

std::expected<TrashedItem, CleanupRefusal> CleanupCoordinator::move(const CleanupCandidate& candidate,
                                                                    IntentRecorder& recorder) const {
  const auto validated = validate(candidate);
  if (!validated) {
    return std::unexpected(validated.error());
  }
  auto moved = trash_.move(validated->item, validated->allocatedBytes, recorder);
  if (!moved) {
    return refused(moved.error());
  }
  return *std::move(moved);
}

CleanupOutcome CleanupCoordinator::moveToTrash(const CleanupCandidate& candidate, const UUID& transactionID,
                                               CleanupJournal& journal) const {
  return attemptMove(candidate.url,
                     {.act = JournalEntry::Act::move,
                      .transactionID = transactionID,
                      .itemID = UUID::random(),
                      .source = CleanupTransaction::Source::buildCleanup,
                      .ruleID = developerRuleID(candidate.url),
                      .measuredBytes = candidate.byteCount,
                      .intent = {}},
                     journal, [&](IntentRecorder& recorder) { return move(candidate, recorder); });
}

std::vector<CleanupOutcome> CleanupCoordinator::moveToTrash(std::span<const CleanupCandidate> candidates,
                                                            const UUID& transactionID, CleanupJournal& journal,
                                                            const std::stop_token& stop) const {
  std::vector<CleanupOutcome> outcomes;
  for (const CleanupCandidate& candidate : candidates) {
    outcomes.push_back(stop.stop_requested()
                           ? CleanupOutcome{.id = UUID::random(),
                                            .url = candidate.url,
                                            .trashURL = {},
                                            .message = std::string(description(MoveRefusal::cancelled))}
                           : moveToTrash(candidate, transactionID, journal));
  }
  if (std::ranges::any_of(outcomes, &CleanupOutcome::success)) {
    trash_.writeSizes();
  }
  return outcomes;
}

std::vector<CleanupCandidate> CleanupCoordinator::remeasure(std::span<const CleanupCandidate> candidates) const {
  std::vector<CleanupCandidate> measured;
  for (const CleanupCandidate& candidate : candidates) {
    if (!isFolder(candidate.url.path)) {
      continue;
    }
    CleanupCandidate& fresh = measured.emplace_back(candidate);
    const auto attributes = reader_.attributes(candidate.url.path, LinkPolicy::refuse);
    fresh.identity = attributes ? std::optional(attributes->identity) : std::nullopt;
    fresh.byteCount = allocatedSize(reader_, candidate.url.path);
  }
  return measured;
}

std::string developerRuleID(const FileURL& url) { return "developer." + std::string(lastPathComponent(url.path)); }

}  // namespace lumenary
