#include "core/ClosetModel.h"

#include <algorithm>
#include <array>

#include "base/CheckedSum.h"
#include "base/Path.h"
#include "core/WardrobeSnapshot.h"
#include "storage/StorageScanner.h"

namespace lumenary {
namespace {

using Source = ClosetNode::Source;

constexpr std::size_t hangingApps = 12;
constexpr std::size_t appRows = 2;
constexpr std::size_t folderRows = 3;
constexpr std::size_t foldersOfCategory = 5;
constexpr std::size_t shownQuickWins = 5;
constexpr std::string_view applicationsFolder = "/Applications";
constexpr std::string_view appSuffix = ".app";
constexpr std::string_view startupRoot = "/";
constexpr std::array shelved = {StorageCategory::developer, StorageCategory::personal, StorageCategory::unclassified};

ClosetNode folderNode(const StorageNode& node, StorageCategory category) {
  return {.id = node.path,
          .title = node.name,
          .bytes = node.byteCount,
          .category = category,
          .source = Source::folder,
          .storageNode = node};
}

ClosetNode categoryNode(StorageCategory category, std::string title, std::int64_t bytes) {
  return {.id = "category-" + std::string(rawValue(category)),
          .title = std::move(title),
          .bytes = bytes,
          .category = category,
          .source = Source::category};
}

/// The size stands beside the folder: sorting by it then reads few folders, which lie all over the memory.
using SizedFolders = std::vector<std::pair<std::int64_t, const StorageNode*>>;

ClosetModel::Folders largestFirst(SizedFolders sized) {
  std::ranges::sort(sized, [](const auto& one, const auto& other) {
    return one.first != other.first ? one.first > other.first : one.second->path < other.second->path;
  });
  ClosetModel::Folders folders(sized.size());
  std::ranges::transform(sized, folders.begin(), [](const auto& folder) { return folder.second; });
  return folders;
}

std::map<StorageCategory, ClosetModel::Folders> foldersOf(const StorageIndex::Children& children) {
  std::map<StorageCategory, SizedFolders> sized;
  for (const auto& [parent, nodes] : children) {
    std::optional<CategoryMarks> around;
    for (const StorageNode& node : nodes) {
      if (node.isFolder()) {
        around = around ? around : CategoryMarks::of(parent);
        CategoryMarks marks = *around;
        marks.add(node.name);
        sized[marks.category(node.name)].emplace_back(node.byteCount, &node);
      }
    }
  }
  std::map<StorageCategory, ClosetModel::Folders> folders;
  for (auto& [category, list] : sized) {
    folders[category] = largestFirst(std::move(list));
  }
  return folders;
}

std::vector<ClosetNode> quickWinsIn(const std::map<StorageCategory, ClosetModel::Folders>& folders,
                                    const StorageTrashGate& gate, std::string_view homes) {
  SizedFolders regenerable;
  for (const auto& [category, list] : folders) {
    for (const StorageNode* const node : list) {
      if (gate.isRegenerableRoot(node->path)) {
        regenerable.emplace_back(node->byteCount, node);
      }
    }
  }
  std::vector<ClosetNode> wins;
  for (const StorageNode* const node :
       ClosetModel::rootFolders(largestFirst(std::move(regenerable)), shownQuickWins, 0, homes)) {
    wins.push_back(folderNode(*node, StorageScanner::category(node->path)));
  }
  return wins;
}

}  // namespace

AppDataVerdict ClosetNode::verdict(const StorageTrashGate& gate) const {
  if (category == StorageCategory::caches || (storageNode && gate.isRegenerableRoot(storageNode->path))) {
    return AppDataVerdict::safe;
  }
  const auto removable = entry();
  return removable && gate.canMoveToTrash(*removable) ? AppDataVerdict::caution : AppDataVerdict::keep;
}

std::string_view ClosetNode::explanation() const {
  switch (source) {
    case Source::remainder:
      return "Many smaller items. Open the Browse view to see each one.";
    case Source::unmeasured:
      return "Snapshots, swap, and data macOS keeps out of reach. It shrinks on its own; Hearthkeep can't move it.";
    case Source::duplicates:
      return "Exact copies of the same files. The original stays; the copies can go.";
    case Source::category:
    case Source::folder:
    case Source::file:
      break;
  }
  return wordsOf(category).detail;
}

std::optional<FileEntry> ClosetNode::entry() const {
  return storageNode ? std::optional(storageNode->asEntry()) : std::nullopt;
}

ClosetModel::ClosetModel(const StorageScanResult& result, const VolumeSnapshot& volume, const StorageTrashGate& gate)
    : totalBytes(volume.totalBytes),
      usedBytes(std::max<std::int64_t>(0, volume.totalBytes - volume.availableBytes)),
      availableBytes(volume.availableBytes),
      categoryTotals(result.categoryTotals()),
      index_(result.index),
      children_(&index_->children(result)),
      homes_(parentPath(gate.home())) {
  foldersByCategory = foldersOf(*children_);
  cabinet = categoryNode(StorageCategory::system, std::string(wordsOf(StorageCategory::system).title),
                         total(StorageCategory::system));
  floor = categoryNode(StorageCategory::caches, "Caches on the floor", total(StorageCategory::caches));
  sealed = {.id = "unmeasured",
            .title = "System Data",
            .bytes = std::max<std::int64_t>(0, usedBytes - result.totalBytes),
            .category = StorageCategory::system,
            .source = Source::unmeasured};
  hangApps();
  layFolders();
  quickWins = quickWinsIn(foldersByCategory, gate, homes_);
}

std::int64_t ClosetModel::total(StorageCategory category) const {
  const auto found = categoryTotals.find(category);
  return found == categoryTotals.end() ? 0 : found->second;
}

void ClosetModel::hangApps() {
  std::vector<ClosetNode> nodes;
  std::size_t leftOut = 0;
  std::int64_t rest = total(StorageCategory::applications);
  const auto apps = children_->find(applicationsFolder);
  for (const StorageNode& app : apps == children_->end() ? std::span<const StorageNode>() : apps->second) {
    if (!app.name.ends_with(appSuffix)) {
      continue;
    }
    if (nodes.size() == hangingApps) {
      ++leftOut;
      continue;
    }
    nodes.push_back(folderNode(app, StorageCategory::applications));
    nodes.back().title.resize(app.name.size() - appSuffix.size());
    rest = saturatedSum(rest, -app.byteCount);
  }
  if (rest >= 1) {
    nodes.push_back({.id = "apps-rest",
                     .title = leftOut > 0 ? std::to_string(leftOut) + " other apps" : "Other app files",
                     .bytes = rest,
                     .category = StorageCategory::applications,
                     .source = Source::remainder});
  }
  rails = pack(std::move(nodes), appRows, 0);
}

void ClosetModel::layFolders() {
  std::int64_t all = 0;
  for (const StorageCategory category : shelved) {
    all = saturatedSum(all, total(category));
  }
  std::vector<ClosetNode> nodes;
  for (const StorageCategory category : shelved) {
    const std::int64_t whole = total(category);
    if (whole <= 0) {
      continue;
    }
    std::int64_t left = whole;
    for (const StorageNode* const folder :
         rootFolders(foldersByCategory[category], foldersOfCategory, std::max(all / 48, whole / 50), homes_)) {
      nodes.push_back(folderNode(*folder, category));
      nodes.back().bytes = std::min(folder->byteCount, left);
      left -= nodes.back().bytes;
    }
    if (left > whole / 20) {
      nodes.push_back(categoryNode(category, "More " + std::string(wordsOf(category).title), left));
    }
  }
  shelves = pack(std::move(nodes), folderRows, availableBytes);
}

ClosetModel::Folders ClosetModel::rootFolders(std::span<const StorageNode* const> nodes, std::size_t limit,
                                              std::int64_t minimumBytes, std::string_view homes) {
  Folders roots;
  for (const StorageNode* const node : nodes) {
    if (roots.size() == limit || node->byteCount < minimumBytes) {
      break;
    }
    const std::string_view path = node->path;
    const std::string_view around = parentPath(path);
    const bool isAtTheTop = around == startupRoot || around == "/Users" || around == homes;
    const auto overlaps = [&](const StorageNode* root) {
      return isSameOrInside(path, root->path) || isSameOrInside(root->path, path);
    };
    if (!isAtTheTop && std::ranges::none_of(roots, overlaps)) {
      roots.push_back(node);
    }
  }
  return roots;
}

bool ClosetModel::canOpen(const ClosetNode& node) const {
  switch (node.source) {
    case Source::duplicates:
      return true;
    case Source::folder: {
      const auto found = children_->find(node.id);
      return found != children_->end() && !found->second.empty();
    }
    case Source::category: {
      const auto found = foldersByCategory.find(node.category);
      return found != foldersByCategory.end() && !found->second.empty();
    }
    case Source::file:
    case Source::remainder:
    case Source::unmeasured:
      break;
  }
  return false;
}

std::vector<ClosetNode> ClosetModel::children(const ClosetNode& node, std::size_t limit) const {
  std::vector<ClosetNode> shown;
  if (node.source == Source::category) {
    const auto found = foldersByCategory.find(node.category);
    const Folders none;
    for (const StorageNode* const folder :
         rootFolders(found == foldersByCategory.end() ? none : found->second, limit, 0, homes_)) {
      shown.push_back(folderNode(*folder, node.category));
    }
  } else if (const auto found = children_->find(node.id); node.source == Source::folder && found != children_->end()) {
    for (const StorageNode& child : std::span(found->second).first(std::min(limit, found->second.size()))) {
      shown.push_back(folderNode(child, StorageScanner::category(child.path)));
      shown.back().source = child.isFolder() ? Source::folder : Source::file;
    }
  }
  std::int64_t rest = node.bytes;
  for (const ClosetNode& child : shown) {
    rest = saturatedSum(rest, -child.bytes);
  }
  const bool opens = node.source == Source::folder || node.source == Source::category;
  if (opens && rest > 0) {
    shown.push_back({.id = node.id + "#rest",
                     .title = "Smaller items",
                     .bytes = rest,
                     .category = node.category,
                     .source = Source::remainder});
  }
  return shown;
}

std::vector<ClosetNode> ClosetModel::drawerRoot() const {
  std::vector<ClosetNode> nodes;
  for (const StorageCategory category : allStorageCategories) {
    if (const std::int64_t bytes = total(category); bytes > 0) {
      nodes.push_back(categoryNode(category, std::string(wordsOf(category).title), bytes));
    }
  }
  return nodes;
}

}  // namespace lumenary
