#include "cleanup/CleanupCatalog.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/Path.h"
#include "base/Text.h"
#include "base/Unicode.h"
#include "cleanup/CatalogRows.h"
#include "cleanup/LinuxCatalog.h"

namespace lumenary {
namespace {

using enum CleanupCatalog::Verdict;
using Rule = CleanupCatalog::Rule;

constexpr std::array<std::string_view, 3> verdictTexts = {"rebuildable", "review", "keep"};

constexpr std::array<std::string_view, 3> installerExtensions = {"dmg", "pkg", "iso"};
constexpr std::array<std::string_view, 2> linuxInstallerExtensions = {"deb", "rpm"};

/// What stands below one of these is named after an app.
constexpr std::string_view libraryCaches = "library/caches/";
constexpr std::string_view dotCache = ".cache/";

const Rule finderLeftover = {"macOS leftover file", "macOS",
                             "Hidden metadata Finder writes next to your files, mostly on non-Mac drives.", rebuildable,
                             "Nothing you'd notice; Finder writes them again if it needs them."};
const Rule nodeModules = {std::string(nodeModulesTitle), "npm, yarn or pnpm",
                          "Packages downloaded for a JavaScript project.", rebuildable,
                          "Run npm install in the project to bring them back."};
const Rule agentWorktrees = {"Coding agent worktrees",
                             "Claude Code or Codex",
                             "Extra copies of a project that a coding agent worked in.",
                             review,
                             "Work that was never committed or merged is lost with the copy.",
                             "Merge what you want, then run git worktree remove in the project."};
const Rule installer = {std::string(installerTitle), "You downloaded it",
                        "A disk image or installer package. Once the app is installed, it isn't needed.", rebuildable,
                        "Download it again from the maker's site if you ever need it."};

/// The folder right below the root of the caches that holds `relative`; empty where `relative` lies in none.
std::string_view cacheFolder(std::string_view relative) {
  for (const std::string_view root : {libraryCaches, dotCache}) {
    if (relative.starts_with(root)) {
      relative.remove_prefix(root.size());
      return relative.substr(0, relative.find('/'));
    }
  }
  return {};
}

/// The rules for what may stand at any depth. Dependencies count before worktrees, whichever stands further out.
const Rule* ruleAnywhere(std::string_view path) {
  const Rule* found = nullptr;
  for (std::size_t at = path.find('/'); at != std::string_view::npos; at = path.find('/', at + 1)) {
    const std::string_view rest = path.substr(at + 1);
    if (rest.starts_with("node_modules")) {
      return &nodeModules;
    }
    if (rest.starts_with(".claude/worktrees/") || rest.starts_with(".codex/worktrees/")) {
      found = &agentWorktrees;
    }
  }
  return found;
}

const Rule* homeRule(std::string_view relative) {
  for (const CatalogRow& row : homeRules()) {
    // Most rows fall out by one byte.
    if (row.prefix.front() == relative.front() && isSameOrInside(relative, row.prefix)) {
      return &row.rule;
    }
  }
  return nullptr;
}

}  // namespace

std::string_view rawValue(CleanupCatalog::Verdict verdict) {
  return verdictTexts.at(static_cast<std::size_t>(verdict));
}

bool isInstallerExtension(std::string_view extension) {
  const auto isOneOf = [&](const auto& known) {
    return std::ranges::any_of(known, [&](std::string_view one) { return equalsIgnoringCase(extension, one); });
  };
  return isOneOf(installerExtensions) || isOneOf(linuxInstallerExtensions);
}

std::optional<std::string> CleanupCatalog::appName(std::string_view folder) const {
  if (folder.contains('.')) {
    return apps_.nameOf(folder);  // never the identifier itself: it says nothing to a person
  }
  return displayText(capitalised(folder));
}

const Rule* CleanupCatalog::named(std::string_view folder, Rule (*make)(const std::string& name)) const {
  const std::lock_guard guard(lock_);
  auto& rule = named_[{make, std::string(folder)}];
  if (!rule) {
    rule = std::make_unique<const Rule>(make(appName(folder).value_or("")));
  }
  return rule.get();
}

const Rule* CleanupCatalog::match(std::string_view path, std::string_view home) const {
  const std::string loweredPath = loweredASCII(path);
  const std::string_view lowered = loweredPath;
  const std::string loweredHome = loweredASCII(home) + "/";
  const std::string_view name = lastPathComponent(lowered);
  if (name.starts_with("._") || name == ".ds_store") {
    return &finderLeftover;
  }
  if (const Rule* rule = ruleAnywhere(lowered)) {
    return rule;
  }
  const bool isInHome = lowered.starts_with(loweredHome);
  const std::string_view relative = isInHome ? lowered.substr(loweredHome.size()) : std::string_view();
  if (const Rule* rule = !relative.empty() ? homeRule(relative) : nullptr) {
    return rule;
  }
  const LinuxMatch onLinux = matchLinuxRows(path, home);
  if (onLinux.row != nullptr) {
    const auto* plain = std::get_if<Rule>(&onLinux.row->rule);
    const Rule* const rule =
        plain != nullptr ? plain : named(onLinux.starred, std::get<LinuxRow::Template>(onLinux.row->rule));
    const bool holdsMore = onLinux.holdsReview || onLinux.holdsKept;
    return holdsMore && rule->verdict == Verdict::rebuildable ? nullptr : rule;
  }
  const bool isDownload = relative.starts_with("downloads/") ||
                          (!downloads_.empty() && path.size() > downloads_.size() && isSameOrInside(path, downloads_));
  if (isDownload && isInstallerExtension(pathExtension(name))) {
    return &installer;
  }
  const std::string_view folder = cacheFolder(relative);
  return folder.empty() || onLinux.holdsReview || onLinux.holdsKept ? nullptr : named(folder, rules::appCache);
}

}  // namespace lumenary
