#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "base/Date.h"
#include "base/FileURL.h"
#include "storage/FileEntry.h"
#include "storage/FolderByteTotals.h"
#include "storage/StorageCategory.h"
#include "storage/StorageIndex.h"
#include "storage/StorageNode.h"

namespace lumenary {

/// What a scan found. It holds the largest files and the folders worth showing, never everything that was seen. A copy
/// shares the index; the other fields must not change once the index was asked.
struct StorageScanResult {
  FileURL root;
  Date scannedAt;               ///< when the scan finished
  std::int64_t totalBytes = 0;  ///< a file with several names counts once
  std::int64_t scannedItemCount = 0;
  std::vector<std::string> inaccessiblePaths;  ///< folders that could not be read or were left out
  std::vector<FileEntry> entries;              ///< the largest files, biggest first
  std::optional<CategoryTotals> categoryByteTotals;
  std::optional<FolderByteTotals> folderByteTotals;
  std::shared_ptr<StorageIndex> index = std::make_shared<StorageIndex>();

  /// Exact where the scan knew them, otherwise summed over `entries`.
  CategoryTotals categoryTotals() const;

  /// What stands in a folder, largest first; empty for a path that isn't known. A trailing slash doesn't matter.
  std::span<const StorageNode> children(std::string_view path) const;
  /// A folder's total, or where none is known the sum of what is listed under it.
  std::int64_t folderBytes(std::string_view path) const;
  /// At most `limit` nodes: those named like the query, then those whose name begins with it, then those whose name
  /// holds it, and for a query with a slash those whose path holds it; each of the four by size, largest first. Letters
  /// match in any case. A stop request gives an empty answer.
  std::vector<StorageNode> search(std::string_view query, std::size_t limit, const std::stop_token& stop = {}) const;
};

}  // namespace lumenary
