#include "cleanup/LookFirstGroup.h"

#include <unordered_map>
#include <utility>

#include "base/CheckedSum.h"
#include "base/Path.h"
#include "base/StableSort.h"
#include "cleanup/FoldersByDepth.h"

namespace lumenary {

std::vector<LookFirstGroup> LookFirstGroup::groups(const FolderByteTotals& folderTotals, std::string_view home,
                                                   const CleanupCatalog& catalog) {
  std::vector<LookFirstGroup> groups;
  std::unordered_map<std::string_view, std::size_t> positions;  // by title
  PathSet seen;
  for (const FolderByteTotals::Folder* folder : shortestFirst(folderTotals)) {
    if (isAnyAround(parentPath(folder->path), seen)) {
      continue;
    }
    const auto* rule = catalog.match(folder->path, home);
    if (rule == nullptr || rule->verdict == CleanupCatalog::Verdict::rebuildable) {
      continue;
    }
    seen.insert(folder->path);
    if (rule->verdict == CleanupCatalog::Verdict::keep) {
      continue;
    }
    const auto [position, isNew] = positions.try_emplace(rule->title, groups.size());
    if (isNew) {
      groups.push_back({.title = rule->title,
                        .what = rule->what,
                        .ifRemoved = rule->ifRemoved,
                        .betterWay = rule->betterWay,
                        .bytes = 0,
                        .urls = {}});
    }
    LookFirstGroup& group = groups[position->second];
    group.bytes = checkedSum(group.bytes, folder->bytes);
    group.urls.push_back({.path = folder->path, .isFolder = true});
  }
  return stableSorted(std::move(groups), [](const LookFirstGroup& group) { return -group.bytes; });
}

}  // namespace lumenary
