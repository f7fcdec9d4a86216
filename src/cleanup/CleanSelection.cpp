#include "cleanup/CleanSelection.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "base/CheckedSum.h"
#include "base/Path.h"
#include "base/StableSort.h"
#include "cleanup/SimpleCleanupCopy.h"

namespace lumenary {
namespace {

constexpr int untouchedDays = 30;

std::string pathKey(const CleanupCandidate& candidate) { return "path:" + candidate.url.path; }

std::string tidyKey(const CleanSelection::TidyGroup& group) { return "tidy:" + group.title; }

/// The items of one title, in the order of the plan.
using ItemGroups = std::vector<std::vector<TidyItem>>;

ItemGroups grouped(const TidyPlan& plan) {
  ItemGroups groups;
  std::unordered_map<std::string_view, std::size_t> positions;
  for (const TidyItem& item : plan.items) {
    if (item.kind == TidyItem::Kind::buildFiles) {
      continue;  // these come as candidates
    }
    const auto [position, isNew] = positions.try_emplace(item.title, groups.size());
    if (isNew) {
      groups.emplace_back();
    }
    groups[position->second].push_back(item);
  }
  return groups;
}

CleanSelection::TidyGroup groupOf(std::span<const TidyItem> items) {
  CleanSelection::TidyGroup group{.title = items.front().title, .bytes = 0, .reason = items.front().reason, .urls = {}};
  for (const TidyItem& item : items) {
    group.bytes = checkedSum(group.bytes, item.entry.byteCount);
    group.urls.push_back(item.entry.url);
  }
  return group;
}

bool isRunning(const CleanupCandidate& candidate, std::span<const std::string> runningProjects) {
  const std::string path = standardise(candidate.url.path);
  return std::ranges::any_of(runningProjects,
                             [&](const std::string& project) { return path.starts_with(project + "/"); });
}

CleanSelection::Item itemOf(const CleanupCandidate& candidate) {
  const std::string_view path = candidate.url.path;
  const std::string_view name = lastPathComponent(path);
  const bool isPackages = name == "node_modules";
  return {.id = pathKey(candidate),
          .title = std::string(lastPathComponent(parentPath(path))).append(" · ").append(SimpleCleanupCopy::kind(name)),
          .reason = isPackages ? "Reinstall packages before running this project again." : candidate.consequences,
          .bytes = candidate.byteCount,
          .paths = {candidate.url.path}};
}

}  // namespace

CleanSelection CleanSelection::suggested(const TidyPlan* plan, std::span<const CleanupCandidate> candidates,
                                         const DeveloperScanner::LastUsed& lastUsed, const Titles& busy,
                                         std::span<const std::string> runningProjects, Date now) {
  CleanSelection selection;
  for (const auto& items : plan == nullptr ? ItemGroups() : grouped(*plan)) {
    const std::string& title = items.front().title;
    const bool isBusy = busy.contains(title);
    if (isBusy) {
      selection.busyTitles.push_back(title);
    }
    if (isBusy || isCheckFirst(items)) {
      selection.skippedTidyTitles.insert(title);
    } else {
      selection.tidyGroups.push_back(groupOf(items));
    }
  }
  std::ranges::sort(selection.busyTitles);
  selection.tidyGroups =
      stableSorted(std::move(selection.tidyGroups), [](const TidyGroup& group) { return -group.bytes; });
  selection.candidates = suggestedCandidates(candidates, lastUsed, runningProjects, now);
  return selection;
}

std::vector<CleanupCandidate> CleanSelection::suggestedCandidates(std::span<const CleanupCandidate> candidates,
                                                                  const DeveloperScanner::LastUsed& lastUsed,
                                                                  std::span<const std::string> runningProjects,
                                                                  Date now) {
  std::set<UUID> untouched;
  for (const CleanupCandidate& candidate : DeveloperScanner::untouched(candidates, lastUsed, untouchedDays, now)) {
    untouched.insert(candidate.id);
  }
  std::vector<CleanupCandidate> suggested;
  for (const CleanupCandidate& candidate : candidates) {
    using enum CleanupCandidate::Classification;
    const bool canGo =
        candidate.classification == known || (candidate.classification == review && untouched.contains(candidate.id));
    if (canGo && !isRunning(candidate, runningProjects)) {
      suggested.push_back(candidate);
    }
  }
  return suggested;
}

bool CleanSelection::isCheckFirst(std::span<const TidyItem> items) {
  return std::ranges::any_of(items, [](const TidyItem& item) {
    return item.kind == TidyItem::Kind::duplicate || item.kind == TidyItem::Kind::installer;
  });
}

std::vector<CleanSelection::Item> CleanSelection::items() const {
  std::vector<Item> rows;
  for (const TidyGroup& group : tidyGroups) {
    Item& row = rows.emplace_back(
        Item{.id = tidyKey(group), .title = group.title, .reason = group.reason, .bytes = group.bytes, .paths = {}});
    std::ranges::transform(group.urls, std::back_inserter(row.paths), &FileURL::path);
  }
  std::ranges::transform(candidates, std::back_inserter(rows), itemOf);
  return rows;
}

CleanSelection CleanSelection::excluding(const Titles& keys) const {
  CleanSelection rest = *this;
  std::erase_if(rest.candidates, [&](const CleanupCandidate& candidate) { return keys.contains(pathKey(candidate)); });
  std::erase_if(rest.tidyGroups, [&](const TidyGroup& group) {
    const bool isLeftOut = keys.contains(tidyKey(group));
    if (isLeftOut) {
      rest.skippedTidyTitles.insert(group.title);
    }
    return isLeftOut;
  });
  return rest;
}

CleanSelection CleanSelection::chosen(const Choice& choice) const {
  Titles left = choice.unticked;
  for (const Item& row : items()) {
    if (choice.shown && !choice.shown->contains(row.id)) {
      left.insert(row.id);
    }
  }
  CleanSelection rest = excluding(left);
  for (const std::string& title : choice.ticked) {
    if (!std::ranges::binary_search(busyTitles, title)) {
      rest.skippedTidyTitles.erase(title);
    }
  }
  return rest;
}

}  // namespace lumenary
