#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Date.h"
#include "base/FileURL.h"
#include "cleanup/CleanupCandidate.h"
#include "cleanup/DeveloperScanner.h"
#include "cleanup/TidyPlan.h"

namespace lumenary {

/// What a single press of "clear" proposes: what can go with no question asked right now.
struct CleanSelection {
  using Titles = std::set<std::string, std::less<>>;

  struct TidyGroup {
    std::string title;
    std::int64_t bytes = 0;
    std::string reason;  ///< of its first item
    std::vector<FileURL> urls;

    bool operator==(const TidyGroup&) const = default;
  };

  /// A row of the list in which a person can untick what should stay.
  struct Item {
    std::string id;  ///< "path:{path}" or "tidy:{title}"
    std::string title;
    std::string reason;
    std::int64_t bytes = 0;
    std::vector<std::string> paths;

    bool operator==(const Item&) const = default;
  };

  std::vector<CleanupCandidate> candidates;  ///< build folders
  std::vector<TidyGroup> tidyGroups;         ///< largest first
  Titles skippedTidyTitles;                  ///< held back: to be looked at first, in use, or left out by the person
  std::vector<std::string> busyTitles;       ///< those that a running tool holds back, sorted

  /// `plan` may be null. `lastUsed` tells when the project around a candidate changed; `busy` are titles in use;
  /// `runningProjects` the folders of projects with a live port.
  static CleanSelection suggested(const TidyPlan* plan, std::span<const CleanupCandidate> candidates,
                                  const DeveloperScanner::LastUsed& lastUsed, const Titles& busy,
                                  std::span<const std::string> runningProjects, Date now);

  /// The candidates that can go: no running project's, and of those to look at only what was left alone for 30 days.
  static std::vector<CleanupCandidate> suggestedCandidates(std::span<const CleanupCandidate> candidates,
                                                           const DeveloperScanner::LastUsed& lastUsed,
                                                           std::span<const std::string> runningProjects, Date now);

  /// True where a person should look before any of them goes.
  static bool isCheckFirst(std::span<const TidyItem> items);

  /// The groups, then the candidates.
  std::vector<Item> items() const;

  /// What a person made of the proposal.
  struct Choice {
    Titles unticked{};  ///< ids of rows
    /// The ids of the rows they saw: what has come since stays. None for all.
    std::optional<Titles> shown{};
    Titles ticked{};  ///< titles of groups that were held back to be looked at, and were
  };
  CleanSelection chosen(const Choice& choice) const;

  /// Without the rows of these ids; a group among them is held back.
  CleanSelection excluding(const Titles& keys) const;
};

}  // namespace lumenary
