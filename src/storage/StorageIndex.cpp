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
  struct Span {
    std::size_t start = 0;
    std::size_t length = 0;
  };
  StorageIndex::SearchItems result;
  std::vector<Span> names;
  std::vector<Span> parents;
  const auto addText = [&](std::string_view text) {
    const std::string folded = caseFolded(text);
    const Span span{result.text.size(), folded.size()};
    result.text.insert(result.text.end(), folded.begin(), folded.end());
    return span;
  };
  for (const auto& [folder, nodes] : children) {
    const auto parent = static_cast<std::uint32_t>(parents.size());
    parents.push_back(addText(folder));
    for (const StorageNode& node : nodes) {
      names.push_back(addText(node.name));
      result.items.push_back({.node = &node, .lowercasedName = {}, .parent = parent});
    }
  }
  // The text stands still only now.
  const auto viewOf = [&](const Span& span) { return std::string_view(result.text.data() + span.start, span.length); };
  for (std::size_t index = 0; index < names.size(); ++index) {
    result.items[index].lowercasedName = viewOf(names[index]);
  }
  for (const Span& parent : parents) {
    result.parents.push_back(viewOf(parent));
  }
  std::ranges::sort(result.items, {}, [](const StorageIndex::SearchItem& item) {
    return std::tuple(-item.node->byteCount, std::string_view(item.node->path));
  });
  return result;
}

}  // namespace

const StorageIndex::Children& StorageIndex::children(const StorageScanResult& result) {
  const std::scoped_lock guard(lock_);
  if (!childrenByParent_) {
    childrenByParent_ = buildChildren(result);
  }
  return *childrenByParent_;
}

const StorageIndex::SearchItems& StorageIndex::searchItems(const StorageScanResult& result) {
  const Children& all = children(result);
  const std::scoped_lock guard(lock_);
  if (!items_) {
    items_.emplace(buildSearchItems(all));
  }
  return *items_;
}

}  // namespace lumenary
