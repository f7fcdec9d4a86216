#include "cleanup/TidyPlanner.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "base/Path.h"
#include "base/StableSort.h"
#include "base/Text.h"
#include "cleanup/TakenFolders.h"
#include "storage/StorageIndex.h"

namespace lumenary {
namespace {

using Names = std::string_view;

constexpr std::int64_t smallestFolder = 52'428'800;
constexpr std::int64_t smallestCache = 1'048'576;
/// Below the home folder, where everything is cache and small ones are worth naming too; the second is Linux's.
constexpr auto cacheRoots = std::to_array<Names>({"/Library/Caches/", "/.cache/"});

constexpr auto personalRoots =
    std::to_array<Names>({"Downloads", "Desktop", "Documents", "Movies", "Pictures", "Music"});
/// Where desktops on Linux keep films.
constexpr auto linuxPersonalRoots = std::to_array<Names>({"Videos"});

constexpr auto tidyProjectMarkers =
    std::to_array<Names>({"package.json", ".git", "pubspec.yaml", "Package.swift", "Cargo.toml", "pyproject.toml",
                          "requirements.txt", "build.gradle", "go.mod", "Gemfile", "Makefile"});
constexpr auto toolFolderNames = std::to_array<Names>(
    {"node_modules", "build", "dist", "target", "out", "bin", "obj", "pods", "deriveddata", "intermediates", "venv",
     "site-packages", "vendor", "externals", "packages", "library", "release", "debug"});
constexpr auto bundleExtensions = std::to_array<Names>({".app", ".bundle", ".framework"});

constexpr auto oldInstallerAge = std::chrono::seconds(2'592'000);

bool isToolFolder(std::string_view name) {
  const auto isInName = [&](std::string_view extension) { return name.contains(extension); };
  const std::string lowered = loweredASCII(name);
  return name.starts_with('.') || std::ranges::any_of(bundleExtensions, isInName) ||
         std::ranges::find(toolFolderNames, lowered) != toolFolderNames.end();
}

/// What stands behind "HOME/ROOT/", for the first of the personal roots that fits; empty where none does.
std::string_view belowPersonalRoot(std::string_view path, std::string_view home, std::span<const std::string> further) {
  for (const std::string& root : further) {
    if (path.size() > root.size() + 1 && isSameOrInside(path, root)) {
      return path.substr(root.size() + 1);
    }
  }
  if (!isSameOrInside(path, home) || path.size() <= home.size()) {
    return {};
  }
  const std::string_view relative = path.substr(home.size() + 1);
  const std::size_t slash = relative.find('/');
  if (slash == std::string_view::npos) {
    return {};
  }
  const std::string_view root = relative.substr(0, slash);
  const bool isPersonal = std::ranges::find(personalRoots, root) != personalRoots.end() ||
                          std::ranges::find(linuxPersonalRoots, root) != linuxPersonalRoots.end();
  return isPersonal ? relative.substr(slash + 1) : std::string_view();
}

std::string duplicateReason(const DuplicateGroup& group) {
  const std::string where =
      group.sameFolder ? "in the same folder" : "at " + std::string(lastPathComponent(parentPath(group.keep.url.path)));
  return "Exact copy of " + group.keep.name + ", which stays " + where + ".";
}

}  // namespace

bool TidyPlanner::isPersonalCopy(std::string_view path, std::string_view home, const IsProject& isProject,
                                 std::span<const std::string> further) {
  const std::string_view below = belowPersonalRoot(path, home, further);
  if (below.empty()) {
    return false;
  }
  const std::size_t root = path.size() - below.size();
  // The ends of the folders between the root and the file, in the whole path.
  std::vector<std::size_t> ends;
  for (std::size_t at = root; (at = path.find('/', at)) != std::string_view::npos; ++at) {
    const std::size_t begin = ends.empty() ? root : ends.back() + 1;
    if (isToolFolder(path.substr(begin, at - begin))) {
      return false;
    }
    ends.push_back(at);
  }
  return std::ranges::none_of(ends, [&](std::size_t end) { return isProject(path.substr(0, end)); });
}

/// A plan that is being made.
class TidyPlanner::Draft {
 public:
  Draft(const TidyPlanner& planner, std::string home) : planner_(planner), home_(std::move(home)) {}

  void addFolders(const FolderByteTotals& totals, bool includeBuildFiles) {
    TakenFolders taken;
    for (const FolderByteTotals::Folder& folder : totals) {
      if (isWorthNaming(folder) && !taken.cover(folder.path) && addFolder(folder, includeBuildFiles)) {
        taken.take(folder.path);
      }
    }
    items_ = stableSorted(std::move(items_), [](const TidyItem& item) { return characterCount(item.entry.url.path); });
  }

  void addDuplicates(std::span<const DuplicateGroup> groups) {
    const IsProject isProject = [this](std::string_view folder) { return this->isProject(folder); };
    for (const DuplicateGroup& group : groups) {
      if (!mayBeTrustedToStay(group.keep.url.path)) {
        continue;
      }
      for (const FileEntry& extra : group.extras) {
        const std::string& path = extra.url.path;
        if (isPersonalCopy(path, home_, isProject, planner_.gate_.personalFolders()) && !isCovered(path) &&
            planner_.gate_.canMoveToTrash(extra)) {
          add({extra, TidyItem::Kind::duplicate, "Duplicate copies", duplicateReason(group), group.keep});
        }
      }
    }
  }

  void addInstallers(std::span<const FileEntry> entries, Date now) {
    for (const FileEntry& entry : entries) {
      const bool isOld = entry.modifiedAt && now - *entry.modifiedAt > oldInstallerAge;
      if (!isOld || !isInstallerExtension(pathExtension(entry.name)) || isCovered(entry.url.path)) {
        continue;
      }
      const auto* rule = planner_.catalog_.match(entry.url.path, home_);
      if (rule != nullptr && rule->title == installerTitle && planner_.gate_.canMoveToTrash(entry)) {
        add({entry, TidyItem::Kind::installer, "Old installers", rule->ifRemoved});
      }
    }
  }

  void addJunk(std::span<const FileEntry> entries) {
    for (const FileEntry& entry : entries) {
      if (!isCovered(entry.url.path) && !isInTrash(entry.url.path) && planner_.gate_.canMoveToTrash(entry)) {
        items_.push_back(
            {entry, TidyItem::Kind::junk, "macOS leftover files", "Hidden Finder metadata; nothing you made."});
      }
    }
  }

  TidyPlan finish() { return TidyPlan(std::move(items_)); }

 private:
  bool isWorthNaming(const FolderByteTotals::Folder& folder) const {
    const auto isInside = [&](std::string_view root) {
      return folder.path.starts_with(home_) && std::string_view(folder.path).substr(home_.size()).starts_with(root);
    };
    return folder.bytes >= smallestFolder ||
           (folder.bytes >= smallestCache && std::ranges::any_of(cacheRoots, isInside));
  }

  bool addFolder(const FolderByteTotals::Folder& folder, bool includeBuildFiles) {
    const auto* rule = planner_.catalog_.match(folder.path, home_);
    if (rule == nullptr || rule->verdict != CleanupCatalog::Verdict::rebuildable) {
      return false;
    }
    const std::string lowered = loweredASCII(folder.path);
    const bool isBuildOutput = lowered.contains("/node_modules") || lowered.contains("/deriveddata");
    if (isBuildOutput && !includeBuildFiles) {
      return false;
    }
    const StorageNode node{.path = folder.path,
                           .name = std::string(lastPathComponent(folder.path)),
                           .byteCount = folder.bytes,
                           .file = {}};
    FileEntry entry = node.asEntry();
    const bool mayGo = planner_.gate_.canMoveToTrash(entry);
    if (mayGo) {
      add({std::move(entry), isBuildOutput ? TidyItem::Kind::buildFiles : TidyItem::Kind::cache, rule->title,
           rule->ifRemoved});
    }
    return mayGo;
  }

  void add(TidyItem item) {
    picked_.insert(item.entry.url.path);
    items_.push_back(std::move(item));
  }

  bool isCovered(std::string_view path) const { return picked_.holdsAround(path); }

  /// The other copy goes, so this one must be where things last: not in a folder of this plan, in build output, in a
  /// folder of some program, or what may be cleared without a question, as old installers may.
  bool mayBeTrustedToStay(std::string_view path) const {
    if (isCovered(path) || isInTrash(path)) {
      return false;
    }
    const auto* rule = planner_.catalog_.match(path, home_);
    const bool isRebuildable = rule != nullptr && rule->verdict == CleanupCatalog::Verdict::rebuildable;
    std::string_view folder = isSameOrInside(path, home_) ? parentPath(path) : std::string_view();
    while (!isRebuildable && folder.size() > home_.size() && !isToolFolder(lastPathComponent(folder))) {
      folder = parentPath(folder);
    }
    return !isRebuildable && folder.size() <= home_.size();
  }

  bool isProject(std::string_view folder) {
    const auto known = projects_.find(folder);
    if (known != projects_.end()) {
      return known->second;
    }
    const bool answer = std::ranges::any_of(tidyProjectMarkers, [&](std::string_view marker) {
      return planner_.reader_.exists(appendingPathComponent(folder, marker));
    });
    return projects_.emplace(folder, answer).first->second;
  }

  const TidyPlanner& planner_;
  std::string home_;
  std::vector<TidyItem> items_;
  PathSet picked_;
  std::unordered_map<std::string, bool, StorageIndex::PathHash, std::equal_to<>> projects_;
};

TidyPlan TidyPlanner::plan(const StorageScanResult& result, std::span<const DuplicateGroup> duplicates,
                           std::span<const FileEntry> junk, bool includeBuildFiles, Date now) const {
  Draft draft(*this, gate_.home());
  if (result.folderByteTotals) {
    draft.addFolders(*result.folderByteTotals, includeBuildFiles);
  }
  draft.addDuplicates(duplicates);
  draft.addInstallers(result.entries, now);
  draft.addJunk(junk);
  return draft.finish();
}

}  // namespace lumenary
