#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "storage/StorageNode.h"

namespace lumenary {

struct StorageScanResult;

/// The tree and the names of one result, each built when it is first asked for and kept as long as the index. From any
/// thread.
class StorageIndex {
 public:
  struct PathHash : std::hash<std::string_view> {
    using is_transparent = void;
  };
  /// What stands in each folder, largest first.
  using Children = std::unordered_map<std::string, std::vector<StorageNode>, PathHash, std::equal_to<>>;

  struct SearchItem {
    const StorageNode* node = nullptr;
    std::string_view lowercasedName;  ///< case-folded
    std::uint32_t parent = 0;         ///< an index into `SearchItems::parents`
  };

  struct SearchItems {
    std::vector<SearchItem> items;          ///< all nodes but the root, largest first, equal sizes by path
    std::vector<std::string_view> parents;  ///< the case-folded path of each folder that holds one
    /// What the views above point into, wherever this value is moved to: the names stand in the order of the items,
    /// each with a NUL behind it.
    std::vector<char> text;
  };

  /// The first caller builds them, the others wait.
  const Children& children(const StorageScanResult& result);
  const SearchItems& searchItems(const StorageScanResult& result);

 private:
  std::mutex childrenLock_;
  std::optional<Children> childrenByParent_;
  std::mutex itemsLock_;  ///< another one: who wants a folder doesn't wait for the names
  std::optional<SearchItems> items_;
};

/// See `StorageScanResult::search`.
std::vector<StorageNode> searchNodes(const StorageIndex::SearchItems& items, std::string_view query, std::size_t limit,
                                     const std::stop_token& stop);

}  // namespace lumenary
