#include "storage/StorageScanResult.h"

#include "base/CheckedSum.h"
#include "base/Unicode.h"

namespace lumenary {

CategoryTotals StorageScanResult::categoryTotals() const {
  if (categoryByteTotals) {
    return *categoryByteTotals;
  }
  CategoryTotals totals;
  for (const FileEntry& entry : entries) {
    std::int64_t& total = totals[entry.category];
    total = saturatedSum(total, entry.byteCount);
  }
  return totals;
}

std::span<const StorageNode> StorageScanResult::children(std::string_view path) const {
  if (path.size() > 1 && path.ends_with('/')) {
    path.remove_suffix(1);
  }
  const StorageIndex::Children& all = index->children(*this);
  const auto found = all.find(path);
  return found == all.end() ? std::span<const StorageNode>() : found->second;
}

std::int64_t StorageScanResult::folderBytes(std::string_view path) const {
  if (const std::int64_t* total = folderByteTotals ? folderByteTotals->find(path) : nullptr) {
    return *total;
  }
  std::int64_t sum = 0;
  for (const StorageNode& node : children(path)) {
    sum = saturatedSum(sum, node.byteCount);
  }
  return sum;
}

std::vector<StorageNode> StorageScanResult::search(std::string_view query, std::size_t limit,
                                                   const std::stop_token& stop) const {
  const std::string_view wanted = trimmed(query);
  if (wanted.empty() || limit < 1) {
    return {};
  }
  return searchNodes(index->searchItems(*this), wanted, limit, stop);
}

}  // namespace lumenary
