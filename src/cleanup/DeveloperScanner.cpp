#include "cleanup/DeveloperScanner.h"

#include <algorithm>
#include <numeric>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "base/CheckedSum.h"
#include "base/Path.h"
#include "base/StableSort.h"
#include "storage/AllocatedSize.h"
#include "storage/BuildArtifacts.h"

namespace lumenary {
namespace {

/// An entry directly inside the root stands at level 1; nothing below the deepest level is looked at.
constexpr std::size_t deepestLevel = 5;

template <class Names>
bool contains(const Names& names, std::string_view name) {
  return std::ranges::find(names, name) != names.end();
}

bool isVirtualEnvironmentName(std::string_view name) { return name == "venv" || name == ".venv"; }

bool holds(const FileReader& reader, std::string_view folder, std::string_view name) {
  return reader.exists(appendingPathComponent(folder, name));
}

DeveloperProject::Runtime runtimeOf(const FileReader& reader, std::string_view root) {
  if (holds(reader, root, "package.json")) {
    return DeveloperProject::Runtime::node;
  }
  if (holds(reader, root, "pyproject.toml")) {
    return DeveloperProject::Runtime::python;
  }
  if (holds(reader, root, "Package.swift")) {
    return DeveloperProject::Runtime::swift;
  }
  return DeveloperProject::Runtime::other;
}

/// Looks for projects and artifacts in the folders below a root, each folder's entries in the order of their bytes, so
/// that the result doesn't depend on the order in which a file system gives them.
class ProjectWalk {
 public:
  ProjectWalk(const FileReader& reader, const std::string& root, std::unordered_set<std::string> pointsNotToEnter,
              std::stop_token stop, const DeveloperScanner::ProgressCallback& progress)
      : reader_(reader),
        root_(root),
        pointsNotToEnter_(std::move(pointsNotToEnter)),
        stop_(std::move(stop)),
        progress_(progress) {}

  std::vector<DeveloperProject> projects() {
    report();
    if (const auto folder = reader_.openFolder(root_, LinkPolicy::follow)) {
      visit(*folder, root_, 1, nullptr);
    }
    return std::move(projects_);
  }

 private:
  struct Entry {
    std::string name;
    FileKind kind = FileKind::other;
  };

  /// `nearestProject` is the nearest project root around the folder. The walk knows it from what it has listed: asking
  /// the disk again for each artifact takes as long as all the rest of the walk.
  void visit(const Descriptor& folder, const std::string& path, std::size_t level, const std::string* nearestProject) {
    const std::vector<Entry> entries = entriesThatMatter(folder);
    if (std::ranges::any_of(entries, [&](const Entry& entry) { return isStandingMarker(path, entry); })) {
      nearestProject = &path;
    }
    for (const Entry& entry : entries) {
      if (stop_.stop_requested()) {
        return;
      }
      const std::string entryPath = appendingPathComponent(path, entry.name);
      if (pointsNotToEnter_.contains(entryPath)) {
        continue;
      }
      if (contains(projectMarkers, entry.name)) {
        projectAt(path);
      }
      if (entry.name == ".git") {
        continue;
      }
      if (DeveloperScanner::isArtifact(reader_, path, entry.name)) {
        if (nearestProject != nullptr) {
          projectAt(*nearestProject).artifactURLs.push_back({entryPath, entry.kind == FileKind::folder});
        }
      } else if (entry.kind == FileKind::folder && level < deepestLevel) {
        if (const auto child = reader_.openFolder(folder, entry.name.c_str())) {
          visit(*child, entryPath, level + 1, nearestProject);
        }
      }
    }
  }

  bool isStandingMarker(const std::string& folder, const Entry& entry) const {
    return contains(projectMarkers, entry.name) && (entry.kind != FileKind::link || holds(reader_, folder, entry.name));
  }

  /// A folder of a million plain files costs no memory: only folders and names that mean something are kept.
  std::vector<Entry> entriesThatMatter(const Descriptor& folder) {
    std::vector<Entry> kept;
    while (!stop_.stop_requested()) {
      const auto entries = reader_.nextEntries(folder, scratch_);
      if (!entries || entries->empty()) {
        break;
      }
      for (const FolderEntry& entry : *entries) {
        const std::string_view name(entry.name, entry.length);
        if (entry.kind == FileKind::folder || name == "target" || isVirtualEnvironmentName(name) ||
            contains(artifactNames, name) || contains(projectMarkers, name)) {
          kept.emplace_back(std::string(name), entry.kind);
        }
      }
    }
    std::ranges::sort(kept, {}, &Entry::name);
    return kept;
  }

  DeveloperProject& projectAt(const std::string& root) {
    const auto [position, isNew] = positions_.try_emplace(root, projects_.size());
    if (isNew) {
      DeveloperProject& project = projects_.emplace_back();
      project.id = UUID::random();
      project.root = {root, true};
      project.name = lastPathComponent(root);
      project.runtime = runtimeOf(reader_, root);
      report();
    }
    return projects_[position->second];
  }

  void report() const {
    if (progress_) {
      progress_({DeveloperScanner::Progress::Phase::looking, projects_.size(), 0});
    }
  }

  const FileReader& reader_;
  const std::string& root_;
  const std::unordered_set<std::string> pointsNotToEnter_;
  const std::stop_token stop_;
  const DeveloperScanner::ProgressCallback& progress_;
  FolderScratch scratch_;
  std::vector<DeveloperProject> projects_;  ///< in the order of discovery
  std::unordered_map<std::string, std::size_t> positions_;
};

/// The measuring phase of a longer operation, reported to a person who waits.
std::vector<std::int64_t> measureAll(const FileReader& reader, const std::vector<std::string>& paths,
                                     std::stop_token stop, const DeveloperScanner::ProgressCallback& progress) {
  if (!progress) {
    return allocatedSizes(reader, paths, std::move(stop));
  }
  using Phase = DeveloperScanner::Progress::Phase;
  progress({Phase::measuring, 0, paths.size()});
  return allocatedSizes(reader, paths, std::move(stop),
                        [&](std::size_t done) { progress({Phase::measuring, done, paths.size()}); });
}

std::vector<std::string> artifactPaths(std::span<const DeveloperProject> projects) {
  std::vector<std::string> paths;
  for (const DeveloperProject& project : projects) {
    for (const FileURL& url : project.artifactURLs) {
      paths.push_back(url.path);
    }
  }
  return paths;
}

template <class Item>
std::vector<Item> largestFirst(std::vector<Item> items, std::int64_t Item::* bytes) {
  return stableSorted(std::move(items), [bytes](const Item& item) { return -(item.*bytes); });
}

CleanupCandidate candidateFor(const FileURL& artifact, const std::string& projectName) {
  const std::string_view name = lastPathComponent(artifact.path);
  CleanupCandidate candidate;
  candidate.id = UUID::random();
  candidate.url = artifact;
  if (name == "target" || contains(generatedOutputNames, name)) {
    candidate.reason = "Recognized generated output in " + projectName + ".";
    candidate.consequences = "The project may regenerate this during the next build.";
    candidate.classification = CleanupCandidate::Classification::known;
  } else {
    candidate.reason = "Large dependency directory in " + projectName + ".";
    candidate.consequences = "Dependencies may need to be downloaded again before the project runs.";
    candidate.classification = CleanupCandidate::Classification::review;
  }
  return candidate;
}

}  // namespace

DeveloperScanner::DeveloperScanner(const FileReader& reader, const MountTable& mountTable)
    : reader_(reader), mounts_(mountTable.mounts().value_or(std::vector<Mount>())) {}

std::vector<DeveloperProject> DeveloperScanner::scan(const std::string& root, std::stop_token stop,
                                                     const ProgressCallback& progress) const {
  std::vector<DeveloperProject> projects =
      ProjectWalk(reader_, root, pointsNotToEnter(root), stop, progress).projects();
  const std::vector<std::int64_t> sizes = measureAll(reader_, artifactPaths(projects), stop, progress);
  std::span<const std::int64_t> remaining = sizes;
  for (DeveloperProject& project : projects) {
    const auto own = remaining.first(project.artifactURLs.size());
    project.artifactBytes = std::accumulate(own.begin(), own.end(), std::int64_t{0}, checkedSum);
    remaining = remaining.subspan(own.size());
  }
  return largestFirst(std::move(projects), &DeveloperProject::artifactBytes);
}

std::vector<CleanupCandidate> DeveloperScanner::cleanupCandidates(std::span<const DeveloperProject> projects,
                                                                  std::stop_token stop,
                                                                  const ProgressCallback& progress) const {
  std::vector<CleanupCandidate> candidates;
  for (const DeveloperProject& project : projects) {
    for (const FileURL& artifact : project.artifactURLs) {
      CleanupCandidate& candidate = candidates.emplace_back(candidateFor(artifact, project.name));
      const auto attributes = reader_.attributes(artifact.path, LinkPolicy::refuse);
      if (attributes) {
        candidate.identity = attributes->identity;
      }
    }
  }
  const std::vector<std::int64_t> sizes = measureAll(reader_, artifactPaths(projects), std::move(stop), progress);
  for (std::size_t index = 0; index < candidates.size(); ++index) {
    candidates[index].byteCount = sizes[index];
  }
  return largestFirst(std::move(candidates), &CleanupCandidate::byteCount);
}

bool DeveloperScanner::isArtifact(const FileReader& reader, const std::string& path) {
  return isArtifact(reader, parentPath(path), lastPathComponent(path));
}

bool DeveloperScanner::isArtifact(const FileReader& reader, std::string_view folder, std::string_view name) {
  if (contains(artifactNames, name)) {
    return true;
  }
  if (name == "target") {
    return std::ranges::any_of(targetBuildFiles, [&](auto file) { return holds(reader, folder, file); });
  }
  return isVirtualEnvironmentName(name) && holds(reader, appendingPathComponent(folder, name), "pyvenv.cfg");
}

std::optional<std::string> DeveloperScanner::nearestProjectRoot(const FileReader& reader, const std::string& path,
                                                                const std::string& bound) {
  std::string folder(parentPath(path));
  while (folder.starts_with(bound)) {
    if (std::ranges::any_of(projectMarkers, [&](auto marker) { return holds(reader, folder, marker); })) {
      return folder;
    }
    if (folder == "/") {
      break;
    }
    folder = std::string(parentPath(folder));
  }
  return {};
}

std::vector<CleanupCandidate> DeveloperScanner::untouched(std::span<const CleanupCandidate> candidates,
                                                          const LastUsed& lastUsed, std::int64_t days, Date now) {
  std::vector<CleanupCandidate> kept;
  const std::optional<Date> cutOff = calendarDaysBefore(now, days);
  if (!cutOff) {
    return kept;
  }
  for (const CleanupCandidate& candidate : candidates) {
    if (candidate.classification == CleanupCandidate::Classification::isProtected) {
      continue;
    }
    const auto date = lastUsed.find(candidate.url.path);
    if (date != lastUsed.end() && date->second < *cutOff) {
      kept.push_back(candidate);
    }
  }
  return kept;
}

std::unordered_set<std::string> DeveloperScanner::pointsNotToEnter(std::string_view root) const {
  const std::vector<std::string> points = mountPointsNotToEnter(mounts_, root);
  return {points.begin(), points.end()};
}

}  // namespace lumenary
