#include <algorithm>
#include <iterator>
#include <utility>

#include "base/Path.h"
#include "cleanup/BusyTools.h"
#include "core/AppModel.h"
#include "storage/RemovedFromScan.h"

// What goes to the Trash because a person says so.

namespace lumenary {
namespace {

/// What left its place, as its outcome tells.
std::vector<RemovedItem> removedItems(std::span<const StorageMove> moves, std::span<const CleanupOutcome> outcomes) {
  std::vector<RemovedItem> removed;
  for (std::size_t index = 0; index < outcomes.size(); ++index) {
    if (outcomes[index].success) {
      const FileEntry& entry = moves[index].entry;
      removed.push_back({.path = standardise(entry.url.path), .byteCount = entry.byteCount});
    }
  }
  return removed;
}

std::set<std::string> movedPaths(std::span<const CleanupOutcome> outcomes) {
  std::set<std::string> paths;
  for (const CleanupOutcome& outcome : outcomes) {
    if (outcome.success) {
      paths.insert(outcome.url.path);
    }
  }
  return paths;
}

std::vector<StorageMove> movesOf(std::vector<FileEntry> entries) {
  std::vector<StorageMove> moves;
  moves.reserve(entries.size());
  for (FileEntry& entry : entries) {
    moves.push_back({.entry = std::move(entry)});
  }
  return moves;
}

FileEntry entryOf(const AppDataItem& item) {
  return {.id = UUID::random(),
          .url = item.url,
          .name = std::string(lastPathComponent(item.url.path)),
          .kind = item.isDirectory ? FileEntry::Kind::directory : FileEntry::Kind::file,
          .byteCount = item.bytes,
          .modifiedAt = {},
          .category = StorageScanner::category(item.url.path)};
}

}  // namespace

std::vector<std::string> AppModel::titlesOf(const TidyPlan& plan) {
  std::vector<std::string> titles;
  std::ranges::transform(plan.groups(), std::back_inserter(titles), &TidyPlan::Group::title);
  return titles;
}

// One act

Task<> AppModel::clean(std::vector<CleanupCandidate> candidates) {
  Records records;
  co_await cleanCandidates(std::move(candidates), records);
}

Task<> AppModel::cleanCandidates(std::vector<CleanupCandidate> candidates, Records& records) {
  auto done = co_await scheduler_.start(
      Lane::acts, [engine = engine_, candidates = std::move(candidates)](const std::stop_token& stop) {
        return engine->acts.clean(candidates, stop);
      });
  cleanupOutcomes.set(done.outcomes);
  const std::set<std::string> gone = movedPaths(done.outcomes);
  publishDone(std::move(done), records);
  if (!gone.empty()) {
    cleanupCandidates.change([&](auto& list) {
      std::erase_if(list, [&](const CleanupCandidate& candidate) { return gone.contains(candidate.url.path); });
    });
  }
  monitoring_.restart();
}

Task<std::vector<CleanupOutcome>> AppModel::removeStorageEntries(std::vector<FileEntry> entries,
                                                                 CleanupTransaction::Source source) {
  Records records;
  co_return co_await removeItems(movesOf(std::move(entries)), source, records);
}

Task<std::vector<CleanupOutcome>> AppModel::removeItems(std::vector<StorageMove> moves,
                                                        CleanupTransaction::Source source, Records& records) {
  auto done = co_await scheduler_.start(Lane::acts,
                                        [engine = engine_, gate = gate_, moves, source](const std::stop_token& stop) {
                                          return engine->acts.remove(moves, source, *gate, stop);
                                        });
  std::vector<CleanupOutcome> outcomes = done.outcomes;
  storageTrashOutcomes.set(outcomes);
  publishDone(std::move(done), records);
  if (auto removed = removedItems(moves, outcomes); !removed.empty()) {
    if (*storageResult) {
      std::erase_if(removed, [root = (*storageResult)->root.path](const RemovedItem& item) {
        return !isSameOrInside(item.path, root);
      });
    }
    co_await patchScan(std::move(removed));
  }
  monitoring_.restart();
  co_return outcomes;
}

/// Lets the numbers fall without a scan. A scan that came meanwhile tells by itself what is there.
Task<> AppModel::patchScan(std::vector<RemovedItem> removed) {
  const Scan first = *storageResult;
  while (const Scan scan = removed.empty() ? nullptr : *storageResult) {
    if (scan->scannedAt != first->scannedAt || scan->root != first->root) {
      co_return;
    }
    const std::uint64_t revision = storageRevision_;
    const Scan patched = co_await scheduler_.start(
        Lane::interactive, [scan, removed, share = scheduler_.sharer()](const std::stop_token&) -> Scan {
          return share(withoutRemoved(*scan, removed));
        });
    if (revision == storageRevision_) {
      setStorageResult(patched);
      refreshVolumeSnapshot();
      scheduler_.run(Lane::store, [engine = engine_, patched] { static_cast<void>(engine->store.save(*patched)); });
      co_return;
    }
  }
}

Task<std::vector<CleanupOutcome>> AppModel::moveAppItemsToTrash(std::vector<FileEntry> entries) {
  Records records;
  co_return co_await moveAppItems(std::move(entries), records);
}

Task<std::vector<CleanupOutcome>> AppModel::moveAppItems(std::vector<FileEntry> entries, Records& records) {
  auto outcomes = co_await removeItems(movesOf(std::move(entries)), CleanupTransaction::Source::apps, records);
  const std::set<std::string> gone = movedPaths(outcomes);
  movedDuringInventory_.insert(gone.begin(), gone.end());
  if (*appInventory && !gone.empty()) {
    appInventory.change([&](std::optional<AppInventory>& inventory) { inventory->removeItems(gone); });
  }
  co_return outcomes;
}

// One press

Task<std::size_t> AppModel::clear(bool includingTidy, CleanSelection::Titles skipping,
                                  std::vector<LeftoverGroup> leftovers, std::vector<CleanupCandidate> candidates) {
  Records records{.isOnePress = true};
  if (includingTidy) {
    co_await tidy({.skipping = std::move(skipping)}, records);
  }
  if (!leftovers.empty()) {
    std::vector<FileEntry> entries;
    for (const LeftoverGroup& group : leftovers) {
      std::ranges::transform(group.items, std::back_inserter(entries), entryOf);
    }
    co_await moveAppItems(std::move(entries), records);
  }
  if (!candidates.empty()) {
    co_await cleanCandidates(std::move(candidates), records);
  }
  std::size_t failed = 0;
  for (const CleanupTransaction& record : records.acts) {
    failed += static_cast<std::size_t>(std::ranges::count(record.items, CleanupTransaction::Item::Outcome::failed,
                                                          &CleanupTransaction::Item::outcome));
  }
  if (records.acts.size() > 1) {
    co_await merge(records);
  }
  offerUndo(records);
  co_return failed;
}

/// Makes one transaction of several. Where that can't be written they stay apart, and one undo still takes all back.
Task<> AppModel::merge(Records& records) {
  std::vector<UUID> ids;
  std::ranges::transform(records.acts, std::back_inserter(ids), &CleanupTransaction::id);
  auto merged = co_await scheduler_.start(
      Lane::acts, [engine = engine_, ids](const std::stop_token&) { return engine->acts.merge(ids); });
  if (!merged.transaction) {
    co_return;
  }
  std::erase_if(unsavedTransactions_,
                [&](const CleanupTransaction& unsaved) { return std::ranges::find(ids, unsaved.id) != ids.end(); });
  records.acts = {*std::move(merged.transaction)};
  publishLog(std::move(merged.log), LogState::written);
}

CleanSelection AppModel::suggestedClear() const {
  std::vector<std::string> runningProjects;
  for (const PortEntry& port : *ports) {
    if (port.projectRoot) {
      runningProjects.push_back(*port.projectRoot);
    }
  }
  const auto& plan = *tidyPlan;
  return CleanSelection::suggested(plan ? &*plan : nullptr, *cleanupCandidates, *candidateLastUsed, *busyTidyTitles,
                                   runningProjects, now());
}

Task<std::size_t> AppModel::clearSuggested(CleanSelection::Titles excluding) {
  co_return co_await clearChosen({.unticked = std::move(excluding)});
}

Task<std::size_t> AppModel::clearChosen(CleanSelection::Choice choice) {
  // What was chosen was chosen of this scan's plan: of another one nothing may go.
  const std::uint64_t revision = storageRevision_;
  const auto isSamePlan = [&] { return revision == storageRevision_ && (choice.ticked.empty() || *tidyPlan); };
  co_await refreshBusyTools();
  if (!isSamePlan()) {
    co_return 0;
  }
  CleanSelection selection = suggestedClear().chosen(choice);
  if (!selection.candidates.empty()) {
    std::set<std::string> paths;
    for (const CleanupCandidate& candidate : selection.candidates) {
      paths.insert(candidate.url.path);
    }
    co_await remeasureCleanupCandidates(std::move(paths));
    if (!isSamePlan()) {
      co_return 0;
    }
    selection = suggestedClear().chosen(choice);
  }
  co_return co_await clear(!selection.tidyGroups.empty() || !choice.ticked.empty(),
                           std::move(selection.skippedTidyTitles), {}, std::move(selection.candidates));
}

Task<> AppModel::refreshBusyTools() {
  const auto& plan = *tidyPlan;
  co_await findBusyTitles(plan ? titlesOf(*plan) : std::vector<std::string>());
}

/// `titles` are those that may be called after a program.
Task<> AppModel::findBusyTitles(std::vector<std::string> titles) {
  busyTidyTitles.setIfChanged(co_await scheduler_.start(
      Lane::utility, [engine = engine_, titles = std::move(titles), date = now()](const std::stop_token&) {
        const std::string running = engine->processInspector.commandLines(date);
        CleanSelection::Titles busy = busyTitles(running);
        busy.merge(busyTitles(running, engine->apps->busyMarkers()));
        busy.merge(busyTitlesByProgram(running, titles));
        return busy;
      }));
}

}  // namespace lumenary
