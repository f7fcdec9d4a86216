#include <algorithm>

#include "base/CheckedSum.h"
#include "base/Path.h"
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
