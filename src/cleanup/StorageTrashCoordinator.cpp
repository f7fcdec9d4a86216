#include "cleanup/StorageTrashCoordinator.h"

#include <algorithm>

#include "base/Path.h"
#include "cleanup/DuplicateGroup.h"
#include "cleanup/FileComparison.h"
#include "cleanup/MoveAttempt.h"
#include "storage/AllocatedSize.h"

namespace lumenary {
namespace {

using enum StorageTrashError;

std::unexpected<CleanupRefusal> refused(const CleanupRefusal& refusal) { return std::unexpected(refusal); }

/// This person may not take it from its folder, or could not empty the Trash of it.
bool isNotPermitted(TrashRefusal refusal) {
  return refusal == TrashRefusal::folderClosed || refusal == TrashRefusal::foreignInside ||
         refusal == TrashRefusal::unchangeable || refusal == TrashRefusal::readOnlyVolume;
}

}  // namespace

/// A link counts as what it leads to when existence and type are asked, and as a link afterwards.
std::expected<OpenedItem, CleanupRefusal> StorageTrashCoordinator::openEntry(const FileEntry& entry) const {
  const auto standing = reader_.attributes(entry.url.path, LinkPolicy::follow);
  if (!standing) {
    const bool isGone = standing.error().isMissing() || standing.error().isLink();
    return isGone ? refused(missing) : refused(standing.error());
  }
  const bool wasFolder = entry.kind == FileEntry::Kind::directory;
  if ((standing->identity.kind == FileKind::folder) != wasFolder) {
    return refused(notAFile);
  }
  auto item = openItem(reader_, entry.url.path);
  if (!item) {
    return item.error().isLink() ? refused(symbolicLink) : refused(item.error());
  }
  if (item->identity.kind == FileKind::link) {
    return refused(symbolicLink);
  }
  if (item->identity.kind != (wasFolder ? FileKind::folder : FileKind::file)) {
    return refused(notAFile);
  }
  return *std::move(item);
}

std::expected<OpenedItem, CleanupRefusal> StorageTrashCoordinator::validate(const FileEntry& entry) const {
  if (!gate_.canMoveToTrash(entry)) {
    return refused(protectedPath);
  }
  auto item = openEntry(entry);
  if (!item) {
    return std::unexpected(item.error());
  }
  const bool isFolder = entry.kind == FileEntry::Kind::directory;
  if (const auto valid = isFolder ? validateFolder(*item) : validateFile(entry, *item); !valid) {
    return std::unexpected(valid.error());
  }
  if (entry.identity && *entry.identity != item->identity) {
    return refused(changedSize);
  }
  return *std::move(item);
}

std::expected<void, CleanupRefusal> StorageTrashCoordinator::validateFile(const FileEntry& entry,
                                                                          const OpenedItem& item) const {
  const auto attributes = reader_.attributes(item.parent, item.name.c_str());
  if (!attributes) {
    return refused(attributes.error());
  }
  if (attributes->identity != item.identity || differsTooMuch(attributes->allocatedBytes, entry.byteCount)) {
    return refused(changedSize);
  }
  return {};
}

std::expected<void, CleanupRefusal> StorageTrashCoordinator::validateFolder(const OpenedItem& item) const {
  const auto allowed = trash_.check(item);
  if (!allowed && isNotPermitted(allowed.error().refusal) && !gate_.isInstalledApp(item.path)) {
    return refused(notPermitted);
  }
  return {};
}

std::expected<void, CleanupRefusal> StorageTrashCoordinator::compare(const OpenedItem& item, const FileEntry& survivor,
                                                                     const std::stop_token& stop) const {
  // What stays must be within the person's reach: neither in the Trash nor on a volume that is away.
  const bool isInReach = gate_.canMoveToTrash(survivor) && !isInTrash(survivor.url.path);
  const auto kept = isInReach ? contents_.openFile(survivor.url.path) : std::unexpected(SystemError{});
  if (!kept) {
    return refused(MoveRefusal::survivorGone);
  }
  const auto twin = contents_.openFile(item.parent, item.name.c_str());
  const auto stamp = twin ? contents_.stamp(*twin) : std::unexpected(twin.error());
  if (!stamp) {
    return refused(stamp.error());
  }
  if (stamp->identity != item.identity) {
    return refused(changedSize);
  }
  switch (compareContents(contents_, *kept, *twin, stop)) {
    case Comparison::same:
      return {};
    case Comparison::sameFile:
      return refused(MoveRefusal::sameFile);
    case Comparison::different:
      return refused(MoveRefusal::copiesDiffer);
    case Comparison::unreadable:
      return refused(MoveRefusal::survivorGone);
    case Comparison::cancelled:
      return refused(MoveRefusal::cancelled);
  }
  return refused(MoveRefusal::survivorGone);
}

std::expected<TrashedItem, CleanupRefusal> StorageTrashCoordinator::move(const StorageMove& move,
                                                                         IntentRecorder& recorder,
                                                                         const std::stop_token& stop) const {
  const auto item = validate(move.entry);
  if (!item) {
    return std::unexpected(item.error());
  }
  std::int64_t allocatedBytes = move.entry.byteCount;
  if (move.entry.kind == FileEntry::Kind::directory) {
    const Measurement measurement = measure(reader_, item->parent, item->name.c_str(), userID_, stop);
    if (measurement.holdsForeignFolder) {
      return refused(TrashError{.refusal = TrashRefusal::foreignInside});
    }
    if (measurement.holdsUnchangeable) {
      return refused(TrashError{.refusal = TrashRefusal::unchangeable});
    }
    allocatedBytes = measurement.allocatedBytes;
  }
  if (move.survivor) {
    if (const auto same = compare(*item, *move.survivor, stop); !same) {
      return std::unexpected(same.error());
    }
  }
  if (stop.stop_requested()) {
    return refused(MoveRefusal::cancelled);
  }
  auto moved = trash_.move(*item, allocatedBytes, recorder);
  return moved ? std::expected<TrashedItem, CleanupRefusal>(*std::move(moved)) : refused(moved.error());
}

std::vector<CleanupOutcome> StorageTrashCoordinator::moveToTrash(std::span<const StorageMove> moves,
                                                                 CleanupTransaction::Source source,
                                                                 const UUID& transactionID, CleanupJournal& journal,
                                                                 const std::stop_token& stop) const {
  std::vector<CleanupOutcome> outcomes;
  outcomes.reserve(moves.size());
  std::vector<std::string_view> survivors;  // of what went
  for (const StorageMove& one : moves) {
    const auto isHeldBy = [&](std::string_view survivor) { return isSameOrInside(survivor, one.entry.url.path); };
    outcomes.push_back(attemptMove(one.entry.url,
                                   {.act = JournalEntry::Act::move,
                                    .transactionID = transactionID,
                                    .itemID = UUID::random(),
                                    .source = source,
                                    .ruleID = storageRuleID(source, one.entry.category),
                                    .measuredBytes = one.entry.byteCount,
                                    .intent = {}},
                                   journal, [&](IntentRecorder& recorder) {
                                     return std::ranges::any_of(survivors, isHeldBy) ? refused(MoveRefusal::isSurvivor)
                                                                                     : move(one, recorder, stop);
                                   }));
    if (outcomes.back().success && one.survivor) {
      survivors.emplace_back(one.survivor->url.path);
    }
  }
  if (std::ranges::any_of(outcomes, &CleanupOutcome::success)) {
    trash_.writeSizes();
  }
  return outcomes;
}

std::string storageRuleID(CleanupTransaction::Source source, StorageCategory category) {
  return std::string(rawValue(source)).append(".").append(rawValue(category));
}

}  // namespace lumenary
