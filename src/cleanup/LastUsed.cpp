#include <algorithm>
#include <array>
#include <utility>

#include "base/Path.h"
#include "cleanup/DeveloperScanner.h"

namespace lumenary {
namespace {

constexpr std::string_view repository = ".git";
constexpr std::string_view folderViewSettings = ".DS_Store";
constexpr std::array<std::string_view, 4> repositoryActivity = {"index", "HEAD", "FETCH_HEAD", "ORIG_HEAD"};

/// The newest date in a folder, leaving out repositories and artifacts.
class DateWalk {
 public:
  DateWalk(const FileReader& reader, std::unordered_set<std::string> pointsNotToEnter, std::size_t entryLimit,
           std::size_t depthLimit)
      : reader_(reader),
        pointsNotToEnter_(std::move(pointsNotToEnter)),
        entryLimit_(entryLimit),
        depthLimit_(depthLimit) {}

  /// False where the path stands but its date can't be read.
  bool takeIfPresent(const std::string& path) {
    const auto attributes = reader_.attributes(path, LinkPolicy::refuse);
    if (attributes) {
      take(attributes->modified);
    }
    return attributes || attributes.error().isMissing();
  }

  /// False where something could not be read, must not be entered, or stands beyond the limit.
  bool visit(const Descriptor& folder, const std::string& path, std::size_t level) {
    std::vector<std::string> folders;
    for (;;) {
      const auto entries = reader_.nextEntries(folder, scratch_);
      if (!entries) {
        return false;
      }
      if (entries->empty()) {
        break;
      }
      for (const FolderEntry& entry : *entries) {
        const std::string_view name(entry.name, entry.length);
        if (name == repository || DeveloperScanner::isArtifact(reader_, path, name)) {
          continue;
        }
        if (!pointsNotToEnter_.empty() && pointsNotToEnter_.contains(appendingPathComponent(path, name))) {
          return false;
        }
        if (name != folderViewSettings && !countEntry(folder, entry)) {
          return false;
        }
        if (entry.kind == FileKind::folder && level < depthLimit_) {
          folders.emplace_back(name);
        }
      }
    }
    return std::ranges::all_of(folders, [&](const std::string& name) {
      const auto child = reader_.openFolder(folder, name.c_str());
      return child && visit(*child, appendingPathComponent(path, name), level + 1);
    });
  }

  std::optional<Date> newest() const { return newest_; }

 private:
  bool countEntry(const Descriptor& folder, const FolderEntry& entry) {
    const auto attributes = reader_.attributes(folder, entry.name);
    if (attributes) {
      take(attributes->modified);
    }
    // What has vanished meanwhile counts without a date; what can't be looked at could be of today.
    return (attributes || attributes.error().isMissing()) && ++counted_ <= entryLimit_;
  }

  void take(Date date) { newest_ = std::max(newest_.value_or(date), date); }

  const FileReader& reader_;
  const std::unordered_set<std::string> pointsNotToEnter_;
  const std::size_t entryLimit_;
  const std::size_t depthLimit_;
  FolderScratch scratch_;
  std::size_t counted_ = 0;
  std::optional<Date> newest_;
};

}  // namespace

std::optional<Date> DeveloperScanner::lastUsed(const std::string& artifact, std::size_t entryLimit,
                                               std::size_t depthLimit) const {
  const std::string project(parentPath(artifact));
  DateWalk walk(reader_, pointsNotToEnter(project), entryLimit, depthLimit);
  bool isKnown = walk.takeIfPresent(artifact);
  for (const std::string_view file : repositoryActivity) {
    isKnown = isKnown && walk.takeIfPresent(appendingPathComponent(appendingPathComponent(project, repository), file));
  }
  if (!isKnown) {
    return {};
  }
  const auto folder = reader_.openFolder(project, LinkPolicy::follow);
  if (!folder || !walk.visit(*folder, project, 1)) {
    return {};
  }
  return walk.newest();
}

}  // namespace lumenary
