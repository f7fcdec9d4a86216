#include "storage/RemovedFromScan.h"

#include <algorithm>
#include <memory>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "base/CheckedSum.h"
#include "base/Path.h"
#include "storage/StorageScanner.h"

namespace lumenary {
namespace {

using Paths = std::set<std::string_view, std::less<>>;

/// True for one of the paths and for what is below one.
bool isCovered(std::string_view path, const Paths& paths) {
  while (!paths.contains(path)) {
    if (path == "/" || path.empty()) {
      return false;
    }
    path = parentPath(path);
  }
  return true;
}

std::int64_t less(std::int64_t total, std::int64_t removed) {
  return std::max<std::int64_t>(0, saturatedSum(total, -removed));
}

FolderByteTotals withoutFolders(const FolderByteTotals& totals, const Paths& paths) {
  std::vector<FolderByteTotals::Folder> kept;
  kept.reserve(totals.size());
  std::ranges::copy_if(totals, std::back_inserter(kept),
                       [&](const auto& folder) { return !isCovered(folder.path, paths); });
  return FolderByteTotals(std::move(kept));
}

}  // namespace

StorageScanResult withoutRemoved(const StorageScanResult& result, std::span<const RemovedItem> removed) {
  Paths paths;
  for (const RemovedItem& item : removed) {
    if (isSameOrInside(item.path, result.root.path)) {
      paths.insert(item.path);
    }
  }
  StorageScanResult left{.root = result.root,
                         .scannedAt = result.scannedAt,
                         .totalBytes = result.totalBytes,
                         .scannedItemCount = result.scannedItemCount,
                         .inaccessiblePaths = result.inaccessiblePaths,
                         .entries = {},
                         .categoryByteTotals = result.categoryByteTotals,
                         .folderByteTotals = result.folderByteTotals};
  left.entries.reserve(result.entries.size());
  for (const FileEntry& entry : result.entries) {
    if (!isCovered(standardise(entry.url.path), paths)) {
      left.entries.push_back(entry);
    } else if (left.categoryByteTotals && left.categoryByteTotals->contains(entry.category)) {
      std::int64_t& total = left.categoryByteTotals->at(entry.category);
      total = less(total, entry.byteCount);
    }
  }
  for (const RemovedItem& item : removed) {
    const bool isInAnother = item.path != "/" && isCovered(parentPath(item.path), paths);
    if (isInAnother || !paths.contains(item.path)) {
      continue;
    }
    const std::int64_t* const known = left.folderByteTotals ? left.folderByteTotals->find(item.path) : nullptr;
    const std::int64_t bytes = known == nullptr ? item.byteCount : *known;
    if (left.folderByteTotals) {
      StorageScanner::addToAncestors(-bytes, parentPath(item.path), result.root.path, *left.folderByteTotals);
    }
    left.totalBytes = less(left.totalBytes, bytes);
  }
  if (left.folderByteTotals) {
    left.folderByteTotals = withoutFolders(*left.folderByteTotals, paths);
  }
  return left;
}

}  // namespace lumenary
