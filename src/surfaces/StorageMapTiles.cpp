#include "surfaces/StorageMapTiles.h"

#include <algorithm>
#include <span>

#include "base/CheckedSum.h"

namespace lumenary::StorageMapView {
namespace {

constexpr std::size_t mostTiles = 24;
constexpr std::int64_t smallestRest = 1'048'576;
constexpr std::int64_t smallestUnmeasured = 1'073'741'824;

}  // namespace

std::vector<Tile> tiles(const Folder& folder) {
  const std::span<const StorageNode> children = folder.result.children(folder.path);
  const std::span<const StorageNode> shown = children.first(std::min(children.size(), mostTiles));
  std::vector<Tile> tiles;
  std::int64_t shownBytes = 0;
  for (const StorageNode& node : shown) {
    tiles.push_back({.id = node.path,
                     .node = node,
                     .title = node.name,
                     .bytes = node.byteCount,
                     .kind = storageKindOf(node.path, node.isFolder())});
    shownBytes = saturatedSum(shownBytes, node.byteCount);
  }
  const std::int64_t total = folder.result.folderBytes(folder.path);
  const std::int64_t rest = total - shownBytes;
  if (rest > std::max(smallestRest, total / 100)) {
    const std::size_t hidden = children.size() - shown.size();
    tiles.push_back({.id = "__rest",
                     .node = {},
                     .title = hidden == 0 ? "Smaller files" : std::to_string(hidden) + " more items",
                     .bytes = rest,
                     .kind = StorageKind::other});
  }
  if (const std::int64_t unmeasured = unmeasuredBytes(folder); unmeasured > 0) {
    tiles.push_back({.id = "__unmeasured",
                     .node = {},
                     .title = "System & unreadable",
                     .bytes = unmeasured,
                     .kind = StorageKind::system});
  }
  return tiles;
}

std::int64_t unmeasuredBytes(const Folder& folder) {
  const std::string& root = folder.result.root.path;
  if (folder.path != root || root != folder.selectedDrive || !folder.snapshot) {
    return 0;
  }
  const std::int64_t used = std::max<std::int64_t>(folder.snapshot->totalBytes - folder.snapshot->availableBytes, 0);
  const std::int64_t unmeasured = used - folder.result.totalBytes;
  return unmeasured > std::max(smallestUnmeasured, used / 200) ? unmeasured : 0;
}

}  // namespace lumenary::StorageMapView
