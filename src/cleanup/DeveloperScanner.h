#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "base/Date.h"
#include "cleanup/CleanupCandidate.h"
#include "cleanup/DeveloperProject.h"
#include "platform/FileReader.h"
#include "platform/MountTable.h"

namespace lumenary {

/// Finds projects under the folder in which a person keeps code, and in them what a build or a package manager can make
/// again. It moves nothing. No operation reports errors: what can't be read reduces the result.
class DeveloperScanner {
 public:
  /// What a waiting person may be shown. Called by the threads that work, one call at a time: by the calling one while
  /// looking, by either of two while measuring.
  struct Progress {
    enum class Phase : std::uint8_t { looking, measuring, dating } phase = Phase::looking;
    std::size_t done = 0;   ///< projects found so far, or items done
    std::size_t total = 0;  ///< items to do; 0 while looking
  };
  using ProgressCallback = std::function<void(const Progress&)>;

  using LastUsed = std::map<std::string, Date>;  ///< by the path of the candidate

  static constexpr std::size_t lastUsedEntryLimit = 20000;
  static constexpr std::size_t lastUsedDepthLimit = 8;

  /// Reads the mounts, which hold for all that the scanner does afterwards.
  DeveloperScanner(const FileReader& reader, const MountTable& mountTable);

  /// The projects at and below `root` (absolute, standardised) down to five levels, largest artifacts first, equal ones
  /// in the order of discovery. Mounts that may stop answering are left out as if they weren't there. A stop request
  /// ends the walk and the measuring; what was found so far is returned, with 0 bytes for what was not measured any
  /// more.
  std::vector<DeveloperProject> scan(const std::string& root, std::stop_token stop = {},
                                     const ProgressCallback& progress = {}) const;

  /// The artifacts of the projects, each measured again, largest first. A stop request leaves the rest unmeasured.
  std::vector<CleanupCandidate> cleanupCandidates(std::span<const DeveloperProject> projects, std::stop_token stop = {},
                                                  const ProgressCallback& progress = {}) const;

  /// True for a folder that a build or a package manager makes, told by its name and what stands beside or in it.
  static bool isArtifact(const FileReader& reader, const std::string& path);
  static bool isArtifact(const FileReader& reader, std::string_view folder, std::string_view name);

  /// The nearest folder around `path` that holds a project marker, while its path begins with `bound`.
  static std::optional<std::string> nearestProjectRoot(const FileReader& reader, const std::string& path,
                                                       const std::string& bound);

  /// When the project around an artifact last changed: the newest date of the artifact itself, of its parent's
  /// repository and of what stands in the parent down to `depthLimit` levels, without repositories and artifacts. No
  /// date where more than `entryLimit` entries would have to be looked at, something that stands there could not be
  /// read, or a mount that may stop answering stands among them: such a project has an unknown age, never an old one.
  std::optional<Date> lastUsed(const std::string& artifact, std::size_t entryLimit, std::size_t depthLimit) const;

  /// The candidates, in the given order, whose date is known and earlier than `days` calendar days before `now`.
  static std::vector<CleanupCandidate> untouched(std::span<const CleanupCandidate> candidates, const LastUsed& lastUsed,
                                                 std::int64_t days, Date now);

 private:
  /// Nothing where the mount table can't be read: the walks go everywhere then.
  std::unordered_set<std::string> pointsNotToEnter(std::string_view root) const;

  const FileReader& reader_;
  const std::vector<Mount> mounts_;  ///< none where they can't be read
};

}  // namespace lumenary
