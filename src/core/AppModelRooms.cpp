#include <algorithm>

#include "base/CheckedSum.h"
#include "base/Path.h"
#include "cleanup/ItemPresentation.h"
#include "core/AppModel.h"
#include "core/DiagnosticsReport.h"

// What the rooms say of themselves, and the report about the program.

namespace lumenary {
namespace {

double fraction(std::uint64_t part, std::uint64_t whole) {
  return whole == 0 ? 0 : static_cast<double>(part) / static_cast<double>(whole);
}

double usedFractionOf(const VolumeSnapshot& volume) {
  if (volume.totalBytes < 1) {
    return 0;
  }
  const auto used = std::max<std::int64_t>(0, volume.totalBytes - volume.availableBytes);
  return std::clamp(static_cast<double>(used) / static_cast<double>(volume.totalBytes), 0.0, 1.0);
}

bool isBrokenAndOwn(const BackgroundItem& item) {
  return item.isBroken() && item.domain == BackgroundItem::Domain::user;
}

}  // namespace

RoomInputs AppModel::roomInputs() const {
  RoomInputs inputs{.now = now()};
  if (const auto& volume = *volumeSnapshot) {
    inputs.usedFraction = usedFractionOf(*volume);
    inputs.availableBytes = volume->availableBytes;
  }
  if (const auto& plan = *tidyPlan) {
    inputs.tidyBytes = plan->safeBytes;
  }
  if (*storageResult) {
    inputs.scannedAt = (*storageResult)->scannedAt;
  }
  if (const auto& inventory = *appInventory) {
    inputs.appSafeBytes = inventory->safeBytes();
    inputs.leftoverBytes = inventory->leftoverBytes();
    inputs.leftoverCount = static_cast<std::int64_t>(inventory->leftovers.size());
  }
  if (const auto& notice = *removedAppsNotice) {
    inputs.leftoverBytes = notice->leftoverBytes;
    inputs.removedAppName = notice->title();
  }
  if (const auto& items = *backgroundItems) {
    inputs.brokenBackgroundItems = std::ranges::count_if(*items, isBrokenAndOwn);
  }
  if (!systemHistory->empty()) {
    const SystemSnapshot& last = systemHistory->back();
    inputs.memoryPressure = last.memoryPressure;
    inputs.memoryFraction = fraction(last.usedMemoryBytes, last.totalMemoryBytes);
  }
  if (const auto top = std::ranges::max_element(*appMemory, {}, &AppMemoryUsage::memoryBytes);
      top != appMemory->end()) {
    inputs.topMemoryApp = top->name;
    inputs.topMemoryBytes = top->memoryBytes;
  }
  inputs.portCount = static_cast<std::int64_t>(ports->size());
  inputs.projectCount = static_cast<std::int64_t>(projects->size());
  for (const CleanupCandidate& candidate : *cleanupCandidates) {
    if (candidate.classification != CleanupCandidate::Classification::isProtected) {
      inputs.buildBytes = checkedSum(inputs.buildBytes, candidate.byteCount);
      ++inputs.buildItemCount;
    }
  }
  return inputs;
}

Task<AppModel::Explanation> AppModel::explain(StorageNode node, std::stop_source stop) {
  co_return co_await scheduler_.start(
      Lane::interactive,
      [engine = engine_, gate = gate_, node = std::move(node), date = now()](const std::stop_token& token) {
        if (token.stop_requested()) {
          return Explanation();  // another thing was chosen before its turn came
        }
        const Platform& platform = engine->platform;
        const FileEntry entry = node.asEntry();
        const bool canTrash = gate->canMoveToTrash(entry);
        const std::string path = node.path;
        const CleanupCatalog::Rule* const rule = engine->catalog.match(path, engine->places.home);
        return Explanation{.evidence = ItemEvidence::gather({.reader = *platform.reader,
                                                             .apps = *platform.apps,
                                                             .catalog = engine->catalog,
                                                             .metadata = *platform.metadata,
                                                             .places = engine->places},
                                                            std::span(&path, 1), node.byteCount, canTrash, date),
                           .safety = StorageSafety::classify(
                               node, engine->places.home, engine->catalog,
                               [&](const std::string& file) { return platform.reader->exists(file); },
                               [&](const FileEntry& moved) { return gate->canMoveToTrash(moved); }),
                           .removal = deletionImpact(entry, *gate),
                           .betterWay = rule == nullptr ? std::nullopt : rule->betterWay,
                           .canTrash = canTrash};
      },
      std::move(stop));
}

Task<std::vector<LookFirstGroup>> AppModel::lookFirstGroups() {
  co_return co_await scheduler_.start(
      Lane::interactive, [engine = engine_, scan = *storageResult](const std::stop_token&) {
        return scan && scan->folderByteTotals
                   ? LookFirstGroup::groups(*scan->folderByteTotals, engine->places.home, engine->catalog)
                   : std::vector<LookFirstGroup>();
      });
}

Task<std::vector<StorageNode>> AppModel::searchScan(std::string query, std::size_t limit, std::stop_source stop) {
  co_return co_await scheduler_.start(
      Lane::interactive,
      [scan = *storageResult, query = std::move(query), limit](const std::stop_token& token) {
        return scan ? scan->search(query, limit, token) : std::vector<StorageNode>();
      },
      std::move(stop));
}

void AppModel::reveal(const std::string& path) {
  scheduler_.run(Lane::utility, [engine = engine_, path] { engine->platform.desktop->reveal(path); });
}

void AppModel::rememberRoom(AppDestination room) { writeSetting(settingsKey::lastRoom, std::string(rawValue(room))); }

Task<> AppModel::exportDiagnostics(std::string path) {
  co_await scheduler_.start(
      Lane::interactive, [engine = engine_, path = std::move(path), text = diagnosticsText()](const std::stop_token&) {
        return engine->platform.files->writeAtomically(path, text).has_value();
      });
}

std::string AppModel::diagnosticsText() const {
  const Scan& scan = *storageResult;
  DiagnosticsFacts facts{.generatedAt = now(),
                         .systemVersion = platform_.systemFacts->kernelRelease(),
                         .appVersion = "",
                         .hasFullDiskAccess = *hasFullDiskAccess,
                         .selectedVolume = selectedDrive->path,
                         .hasScan = scan != nullptr,
                         .portCount = ports->size(),
                         .processCount = processes->size(),
                         .candidateCount = cleanupCandidates->size()};
  if (scan) {
    facts.entryCount = scan->entries.size();
    facts.inaccessibleCount = scan->inaccessiblePaths.size();
  }
  if (!systemHistory->empty()) {
    facts.lastReading = systemHistory->back();
  }
  return diagnosticsReport(facts);
}

}  // namespace lumenary
