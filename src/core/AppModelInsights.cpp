#include <algorithm>
#include <utility>

#include "cleanup/CleanupCoordinator.h"
#include "cleanup/DuplicateFinder.h"
#include "cleanup/MacJunk.h"
#include "cleanup/PlannedCandidates.h"
#include "core/AppModel.h"

// What of a scan can go, the code folder, and the size of the Trash.

namespace lumenary {
namespace {

/// What still stands where the scan saw it.
TidyPlan standing(TidyPlan plan, const FileReader& reader) {
  const auto isGone = [&](const TidyItem& item) { return !reader.exists(item.entry.url.path); };
  return std::erase_if(plan.items, isGone) == 0 ? plan : TidyPlan(std::move(plan.items));
}

/// Each look gives fresh ids.
bool isSameProject(const DeveloperProject& one, const DeveloperProject& other) {
  return one.root == other.root && one.runtime == other.runtime && one.artifactBytes == other.artifactBytes &&
         one.artifactURLs == other.artifactURLs;
}

}  // namespace

TidyPlan AppModel::planOf(const AppEngine& engine, const StorageTrashGate& gate, const StorageScanResult& scan,
                          std::span<const DuplicateGroup> duplicates, std::span<const FileEntry> junk,
                          bool includeBuildFiles) {
  const TidyPlanner planner(*engine.platform.reader, engine.catalog, gate);
  return planner.plan(scan, duplicates, junk, includeBuildFiles, engine.platform.now());
}

Job<AppModel::Insights> AppModel::startInsights(Scan scan) {
  const auto publishBase = [this, alive = std::weak_ptr(lifetime_), revision = storageRevision_,
                            &owner = owner()](TidyPlan plan) {
    owner.post([this, alive, revision, plan = std::move(plan)]() mutable {
      if (!alive.expired()) {
        publishBaseInsights(std::move(plan), revision);
      }
    });
  };
  return scheduler_.start(Lane::insights, [engine = engine_, gate = gate_, scan = std::move(scan),
                                           publishBase](const std::stop_token& stop) {
    const Platform& platform = engine->platform;
    // Duplicates take long; the rest of the answer needn't wait for them.
    publishBase(standing(planOf(*engine, *gate, *scan, {}, {}, true), *platform.reader));
    if (stop.stop_requested()) {
      return Insights();
    }
    const DuplicateFinder finder(*platform.reader, *platform.contents, *platform.files, *gate, engine->places,
                                 platform.probe);
    Insights insights{.duplicates = finder.find(scan->entries, stop), .junk = {}, .plan = {}};
    if (scan->root.path != macVolumeRoot.path) {
      insights.junk = macJunk(*platform.reader, scan->root.path, macJunkLimit, stop);
    }
    if (stop.stop_requested()) {
      return Insights();
    }
    insights.plan = standing(planOf(*engine, *gate, *scan, insights.duplicates, insights.junk, true), *platform.reader);
    return insights;
  });
}

Task<> AppModel::refreshInsights() {
  if (!*storageResult) {
    co_return;
  }
  const std::uint64_t revision = storageRevision_;
  if (!insightsTask_) {
    insightsTask_ = startInsights(*storageResult);
  }
  const Job<Insights> task = *insightsTask_;
  const Insights& insights = co_await task;
  if (revision != storageRevision_) {
    co_return;
  }
  duplicates.setIfChanged(insights.duplicates);
  junk_ = insights.junk;
  tidyPlan.setIfChanged(insights.plan);
  publishPlannedCandidates();
}

void AppModel::publishBaseInsights(TidyPlan plan, std::uint64_t revision) {
  if (revision == storageRevision_ && !*tidyPlan) {
    tidyPlan.set(std::move(plan));
    publishPlannedCandidates();
  }
}

/// With a code folder the developer scan alone tells what can go.
void AppModel::publishPlannedCandidates() {
  if (projects->empty()) {
    const auto& plan = *tidyPlan;
    cleanupCandidates.setIfChanged(buildCandidates(plan ? &*plan : nullptr, *cleanupCandidates));
  }
}

void AppModel::restoreCodeFolder() {
  if (!*developerRoot) {
    run(findCodeFolder());
  }
}

Task<> AppModel::findCodeFolder() {
  const auto folder = co_await scheduler_.start(
      Lane::utility, [engine = engine_](const std::stop_token&) -> std::optional<std::string> {
        const auto path = engine->platform.defaults->string(settingsKey::codeFolder).value_or(std::nullopt);
        return path && engine->platform.reader->exists(*path) ? path : std::nullopt;
      });
  if (folder && !*developerRoot) {
    scanDeveloperProjects({.path = *folder, .isFolder = true});
  }
}

void AppModel::scanDeveloperProjects(const FileURL& url) {
  developerRoot.setIfChanged(url);
  writeSetting(settingsKey::codeFolder, url.path);
  run(findProjects(url));
}

Task<> AppModel::findProjects(FileURL url) {
  const auto engine = engine_;
  const std::uint64_t request = ++projectsRequest_;
  auto found = co_await scheduler_.start(Lane::utility, [engine, url](const std::stop_token& stop) {
    return DeveloperScanner(*engine->platform.reader, *engine->platform.mountTable).scan(url.path, stop);
  });
  if (request != projectsRequest_) {
    co_return;
  }
  if (!std::ranges::equal(*projects, found, isSameProject)) {
    projects.set(found);
  }
  auto candidates =
      co_await scheduler_.start(Lane::utility, [engine, found = std::move(found)](const std::stop_token& stop) {
        return DeveloperScanner(*engine->platform.reader, *engine->platform.mountTable).cleanupCandidates(found, stop);
      });
  if (request == projectsRequest_) {
    cleanupCandidates.set(std::move(candidates));
  }
}

Task<> AppModel::measureLastUsed() {
  if (cleanupCandidates->empty()) {
    co_return;
  }
  ++lastUsedMeasurements_;
  isMeasuringLastUsed.setIfChanged(true);
  auto dates = co_await scheduler_.start(
      Lane::utility, [engine = engine_, candidates = *cleanupCandidates](const std::stop_token& stop) {
        const DeveloperScanner scanner(*engine->platform.reader, *engine->platform.mountTable);
        DeveloperScanner::LastUsed found;
        for (const CleanupCandidate& candidate : candidates) {
          const auto date = stop.stop_requested()
                                ? std::nullopt
                                : scanner.lastUsed(candidate.url.path, DeveloperScanner::lastUsedEntryLimit,
                                                   DeveloperScanner::lastUsedDepthLimit);
          if (date) {
            found.emplace(candidate.url.path, *date);
          }
        }
        return found;
      });
  candidateLastUsed.setIfChanged(std::move(dates));
  isMeasuringLastUsed.setIfChanged(--lastUsedMeasurements_ > 0);
}

Task<> AppModel::remeasureCleanupCandidates(std::optional<std::set<std::string>> only) {
  std::vector<CleanupCandidate> subset;
  std::ranges::copy_if(*cleanupCandidates, std::back_inserter(subset),
                       [&](const CleanupCandidate& candidate) { return !only || only->contains(candidate.url.path); });
  const auto measured =
      co_await scheduler_.start(Lane::interactive, [engine = engine_, subset](const std::stop_token&) {
        const Platform& platform = engine->platform;
        return CleanupCoordinator(*platform.reader, *platform.trash, engine->places).remeasure(subset);
      });
  std::set<UUID> asked;
  for (const CleanupCandidate& candidate : subset) {
    asked.insert(candidate.id);
  }
  std::map<UUID, const CleanupCandidate*> fresh;
  for (const CleanupCandidate& candidate : measured) {
    fresh.emplace(candidate.id, &candidate);
  }
  std::vector<CleanupCandidate> merged;
  for (const CleanupCandidate& candidate : *cleanupCandidates) {
    const auto found = fresh.find(candidate.id);
    if (found != fresh.end()) {
      merged.push_back(*found->second);
    } else if (!asked.contains(candidate.id)) {
      merged.push_back(candidate);
    }
  }
  cleanupCandidates.setIfChanged(std::move(merged));
}

void AppModel::refreshTrashSize() { run(measureTrash()); }

Task<> AppModel::measureTrash() {
  const std::uint64_t request = ++trashRequest_;
  const auto bytes = co_await scheduler_.start(
      Lane::utility, [engine = engine_](const std::stop_token&) -> std::optional<std::int64_t> {
        const auto folders = engine->platform.trashBin->itemFolders();
        return folders ? totalTrashSize(*engine->platform.reader, *folders) : std::nullopt;
      });
  if (request == trashRequest_) {
    trashBytes.setIfChanged(bytes);
  }
}

}  // namespace lumenary
