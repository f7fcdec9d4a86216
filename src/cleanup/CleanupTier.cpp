#include "cleanup/CleanupTier.h"

#include "base/Path.h"
#include "base/Text.h"
#include "cleanup/LinuxCatalog.h"

namespace lumenary {
namespace {

CleanupTier tierOf(CleanupCatalog::Verdict verdict) {
  switch (verdict) {
    case CleanupCatalog::Verdict::rebuildable:
      return CleanupTier::recommended;
    case CleanupCatalog::Verdict::review:
      return CleanupTier::review;
    case CleanupCatalog::Verdict::keep:
      break;
  }
  return CleanupTier::managed;
}

}  // namespace

CleanupTier cleanupTier(const FileEntry& entry, const CleanupCatalog& catalog, const StorageTrashGate& gate) {
  if (!gate.canMoveToTrash(entry)) {
    return CleanupTier::managed;
  }
  if (const auto* rule = catalog.match(entry.url.path, gate.home())) {
    return tierOf(rule->verdict);
  }
  const bool isFolder = entry.kind == FileEntry::Kind::directory;
  if (isFolder && gate.isRegenerableRoot(standardise(entry.url.path))) {
    return CleanupTier::recommended;
  }
  if (matchLinuxRows(standardise(entry.url.path), gate.home()).holdsReview) {
    return CleanupTier::review;
  }
  const std::string lowered = loweredASCII(entry.url.path);
  const bool isCache =
      entry.category == StorageCategory::caches || lowered.contains("/library/caches/") || lowered.contains("/.cache/");
  return isCache ? CleanupTier::recommended : CleanupTier::review;
}

}  // namespace lumenary
