#include "apps/AppBreakdown.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

#include "base/CheckedSum.h"
#include "base/Path.h"
#include "base/Text.h"
#include "base/Unicode.h"

namespace lumenary {
namespace {

constexpr auto websiteCaches =
    std::to_array<std::string_view>({"Service Worker/CacheStorage", "Service Worker/ScriptCache"});

AppDataItem itemOf(const std::string& path, AppDataKind kind, bool isDirectory, std::int64_t bytes) {
  return {.url = {.path = path, .isFolder = isDirectory},
          .kind = kind,
          .title = std::string(wholeFolderTitle(kind)),
          .isDirectory = isDirectory,
          .bytes = bytes,
          .verdict = verdictOf(kind),
          .explanation = std::string(explanationOf(kind))};
}

std::string joined(std::string_view base, std::string_view name) {
  return base.empty() ? std::string(name) : std::string(base).append("/").append(name);
}

/// The passes over one folder. Each claims what it knows; what nobody claims is the rest.
class Breakdown {
 public:
  Breakdown(AppFolders& folders, const std::string& path, const BreakdownRules& rules,
            const AppFolders::Entries& children)
      : folders_(folders), path_(path), rules_(rules), children_(children) {
    for (const AppFolders::Entry& child : children_) {
      remaining_.push_back(folders_.bytesAt(at(child.name)));
    }
    isClaimed_.resize(children_.size());
  }

  std::int64_t unclaimedBytes() const {
    std::int64_t sum = 0;
    for (std::size_t index = 0; index < children_.size(); ++index) {
      sum = isClaimed_[index] ? sum : checkedSum(sum, remaining_[index]);
    }
    return sum;
  }

  std::vector<AppDataItem> run() {
    claimKnownParts();
    claimRebuildableFolders();
    claimWebsiteCaches();
    claimOldVersions();
    addRest();
    return std::move(items_);
  }

 private:
  struct Words {
    std::string title;
    std::string explanation;
    AppDataVerdict verdict = AppDataVerdict::safe;
  };

  std::string at(std::string_view relative) const { return appendingPathComponent(path_, relative); }
  void claimKnownParts();
  void claimRebuildableFolders();
  void claimWebsiteCaches();
  void claimOldVersions();
  void addRest();
  void claim(const std::string& relative, Words words);
  std::vector<std::string> basesLeft() const;
  bool isReachedThroughFolders(const std::string& relative);

  AppFolders& folders_;
  const std::string& path_;
  const BreakdownRules& rules_;
  const AppFolders::Entries& children_;
  std::vector<std::int64_t> remaining_;  ///< of each child
  std::vector<bool> isClaimed_;          ///< each child
  std::vector<AppDataItem> items_;
};

void Breakdown::claimKnownParts() {
  for (const AppDataPart& part : rules_.known) {
    claim(part.path, {part.title, part.explanation, part.verdict});
  }
}

void Breakdown::claimRebuildableFolders() {
  const auto& names = KnownAppData::rebuildableFolderNames();
  for (const AppFolders::Entry& child : children_) {
    if (const auto found = names.find(caseFolded(child.name)); found != names.end()) {
      const bool isReports = found->second == "Logs" || found->second == "Crash reports";
      claim(child.name, {std::string(found->second),
                         isReports ? "Old diagnostic logs and crash reports. Nothing you'd notice."
                                   : "Rebuilt automatically. The app may be a little slower the first time it starts.",
                         AppDataVerdict::safe});
    }
  }
}

void Breakdown::claimWebsiteCaches() {
  for (const std::string& base : basesLeft()) {
    // The next pass needs the list as well, and with it nothing has to be looked at one by one.
    folders_.entries(base.empty() ? path_ : at(base));
    for (const std::string_view name : websiteCaches) {
      claim(joined(base, name),
            {"Website offline caches" + (base.empty() ? "" : " · " + displayText(base)),
             "Copies of websites kept for speed and offline use. Sites download them again.", AppDataVerdict::safe});
    }
  }
}

void Breakdown::claimOldVersions() {
  using Version = std::pair<std::vector<std::int64_t>, std::string>;
  for (const std::string& base : basesLeft()) {
    std::vector<Version> versions;
    for (const AppFolders::Entry& entry : folders_.entriesOrNone(base.empty() ? path_ : at(base))) {
      if (auto numbers = KnownAppData::version(entry.name)) {
        versions.emplace_back(*std::move(numbers), entry.name);
      }
    }
    if (versions.size() < 2) {
      continue;
    }
    const std::string newest = std::ranges::max_element(versions, {}, &Version::first)->second;
    for (const auto& [numbers, name] : versions) {
      if (name != newest) {
        claim(joined(base, name), {"Old version " + name,
                                   "An earlier version the app no longer uses. The current one (" + newest + ") stays.",
                                   rules_.oldVersionVerdict});
      }
    }
  }
}

void Breakdown::addRest() {
  const std::int64_t rest = unclaimedBytes();
  if (rest < 1) {
    return;
  }
  AppDataItem item = itemOf(path_, rules_.kind, true, rest);
  const bool isTool = rules_.kind == AppDataKind::homeFolder;
  item.title = isTool ? "Settings and other files" : "Your app data";
  item.explanation = isTool ? "Settings, sign-in and other files this tool needs."
                            : "Documents, settings and sign-in for this app. Removing it can lose your work.";
  item.verdict = AppDataVerdict::keep;
  items_.push_back(std::move(item));
}

/// Takes a part out of what is left. One with a slash in its path leaves the child that it stands in to the others.
void Breakdown::claim(const std::string& relative, Words words) {
  const std::size_t slash = relative.find('/');
  const AppFolders::Entry* const top = entryNamed(children_, std::string_view(relative).substr(0, slash));
  if (top == nullptr) {
    return;
  }
  const auto index = static_cast<std::size_t>(top - children_.data());
  if (isClaimed_[index] || !isReachedThroughFolders(relative)) {
    return;
  }
  const std::string full = at(relative);
  const auto kind = folders_.kindAt(full);
  const bool isNested = slash != std::string::npos;
  const std::int64_t bytes = kind && isNested ? folders_.bytesAt(full) : remaining_[index];
  if (!kind || bytes < 1) {
    return;
  }
  if (isNested) {
    remaining_[index] = std::max<std::int64_t>(0, remaining_[index] - bytes);
  } else {
    isClaimed_[index] = true;
  }
  AppDataItem item = itemOf(full, rules_.kind, kind == FileKind::folder, bytes);
  item.title = std::move(words.title);
  item.explanation = std::move(words.explanation);
  item.verdict = words.verdict;
  items_.push_back(std::move(item));
}

std::vector<std::string> Breakdown::basesLeft() const {
  std::vector<std::string> bases = {""};
  for (std::size_t index = 0; index < children_.size(); ++index) {
    if (!isClaimed_[index] && children_[index].kind == FileKind::folder) {
      bases.push_back(children_[index].name);
    }
  }
  return bases;
}

/// A link on the way would lead to things that stand elsewhere.
bool Breakdown::isReachedThroughFolders(const std::string& relative) {
  for (std::size_t slash = relative.find('/'); slash != std::string::npos; slash = relative.find('/', slash + 1)) {
    if (!folders_.isFolder(at(relative.substr(0, slash)))) {
      return false;
    }
  }
  return true;
}

}  // namespace

AppDataItem wholeItem(AppFolders& folders, const std::string& path, AppDataKind kind) {
  return itemOf(path, kind, folders.isFolder(path), folders.bytesAt(path));
}

std::vector<AppDataItem> parts(AppFolders& folders, const std::string& path, const BreakdownRules& rules) {
  const AppFolders::Entries* const children = folders.entries(path);
  if (children == nullptr) {
    return {wholeItem(folders, path, rules.kind)};
  }
  Breakdown breakdown(folders, path, rules, *children);
  const std::int64_t total = breakdown.unclaimedBytes();
  if (total < rules.minimumBytes) {
    return {itemOf(path, rules.kind, true, total)};
  }
  return breakdown.run();
}

}  // namespace lumenary
