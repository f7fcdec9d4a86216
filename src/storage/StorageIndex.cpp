#include "storage/StorageIndex.h"

#include <algorithm>
#include <tuple>

#include "base/Path.h"
#include "base/StableSort.h"
#include "base/Unicode.h"
#include "storage/StorageScanResult.h"

namespace lumenary {
namespace {

std::vector<StorageNode>& childrenOf(StorageIndex::Children& children, std::string_view folder) {
  const auto found = children.find(folder);
  return found != children.end() ? found->second : children[std::string(folder)];
}

StorageIndex::Children buildChildren(const StorageScanResult& result) {
  StorageIndex::Children children;
  if (result.folderByteTotals) {
    for (const auto& [path, bytes] : *result.folderByteTotals) {
      if (path != result.root.path && path != "/") {
        childrenOf(children, parentPath(path))
            .push_back({.path = path, .name = std::string(lastPathComponent(path)), .byteCount = bytes, .file = {}});
      }
    }
  }
  for (const FileEntry& entry : result.entries) {
    childrenOf(children, parentPath(entry.url.path))
        .push_back({.path = entry.url.path, .name = entry.name, .byteCount = entry.byteCount, .file = entry});
  }
  for (auto& [folder, nodes] : children) {
    nodes = stableSorted(std::move(nodes), [](const StorageNode& node) { return -node.byteCount; });
  }
  return children;
}

StorageIndex::SearchItems buildSearchItems(const StorageIndex::Children& children) {
  StorageIndex::SearchItems result;
  std::vector<std::size_t> ends;
  const auto addText = [&](std::string_view text) {
    const std::string folded = caseFolded(text);
    result.text.insert(result.text.end(), folded.begin(), folded.end());
    ends.push_back(result.text.size());
    result.text.push_back('\0');
  };
  for (const auto& [folder, nodes] : children) {
    for (const StorageNode& node : nodes) {
      result.items.push_back(
          {.node = &node, .lowercasedName = {}, .parent = static_cast<std::uint32_t>(result.parents.size())});
    }
    result.parents.emplace_back();
    addText(folder);
  }
  std::ranges::sort(result.items, {}, [](const StorageIndex::SearchItem& item) {
    return std::tuple(-item.node->byteCount, std::string_view(item.node->path));
  });
  // In the order in which a search goes through them.
  for (const StorageIndex::SearchItem& item : result.items) {
    addText(item.node->name);
  }
  // The text stands still only now.
  std::size_t start = 0;
  std::size_t next = 0;
  const auto nextText = [&] {
    const std::string_view text(result.text.data() + start, ends[next] - start);
    start = ends[next++] + 1;
    return text;
  };
  std::ranges::generate(result.parents, nextText);
  for (StorageIndex::SearchItem& item : result.items) {
    item.lowercasedName = nextText();
  }
  return result;
}

}  // namespace

const StorageIndex::Children& StorageIndex::children(const StorageScanResult& result) {
  const std::scoped_lock guard(childrenLock_);
  if (!childrenByParent_) {
    childrenByParent_ = buildChildren(result);
  }
  return *childrenByParent_;
}

const StorageIndex::SearchItems& StorageIndex::searchItems(const StorageScanResult& result) {
  const Children& all = children(result);
  const std::scoped_lock guard(itemsLock_);
  if (!items_) {
    items_.emplace(buildSearchItems(all));
  }
  return *items_;
}

}  // namespace lumenary
