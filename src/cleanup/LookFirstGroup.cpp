#include "cleanup/LookFirstGroup.h"

#include <unordered_map>
#include <utility>

#include "base/CheckedSum.h"
#include "base/StableSort.h"
#include "cleanup/TakenFolders.h"

namespace lumenary {

std::vector<LookFirstGroup> LookFirstGroup::groups(const FolderByteTotals& folderTotals, std::string_view home,
                                                   const CleanupCatalog& catalog) {
  struct Listed {
    const FolderByteTotals::Folder* folder;
    const CleanupCatalog::Rule* rule;
  };
  std::vector<Listed> listed;
  TakenFolders seen;
  for (const FolderByteTotals::Folder& folder : folderTotals) {
    const auto* rule = seen.cover(folder.path) ? nullptr : catalog.match(folder.path, home);
    if (rule == nullptr || rule->verdict == CleanupCatalog::Verdict::rebuildable) {
      continue;
    }
    seen.take(folder.path);
    if (rule->verdict == CleanupCatalog::Verdict::review) {
      listed.push_back({&folder, rule});
    }
  }
  std::vector<LookFirstGroup> groups;
  std::unordered_map<std::string_view, std::size_t> positions;  // by title
  for (const auto& [folder, rule] :
       stableSorted(std::move(listed), [](const Listed& one) { return characterCount(one.folder->path); })) {
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
