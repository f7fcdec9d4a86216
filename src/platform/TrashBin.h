#pragma once

#include <cstddef>
#include <functional>
#include <stop_token>
#include <string>
#include <vector>

#include "platform/SystemError.h"

/// The Trash as a whole. Apart from `Trash`, as whoever is handed this one can remove things for good, though nothing
/// but what is in the Trash already.
namespace lumenary {

struct TrashEmptying {
  std::size_t removedCount = 0;  ///< items; a folder with all that is in it is one
  std::size_t leftCount = 0;     ///< items that are still there, whole or in part
  SystemError cause{};           ///< why the first of them is; code 0 where nothing failed
  bool isCancelled = false;
  bool isUnreachable = false;  ///< where the Trash is couldn't be told, and nothing was begun

  bool operator==(const TrashEmptying&) const = default;
};

/// How many items of how many are done. Called from any thread, one call at a time.
using EmptyingProgress = std::function<void(std::size_t done, std::size_t of)>;

/// Blocks.
class TrashBin {
 public:
  virtual ~TrashBin() = default;

  /// The folders that hold what this person has in the Trash, on all local volumes, whether they exist or not; the
  /// first is that of the home folder. Two mounts of one volume may give one folder twice.
  virtual SystemResult<std::vector<std::string>> itemFolders() const = 0;

  /// Removes all of it for good, without following a link and without going beyond a Trash's own file system. Folders
  /// closed for writing are opened first. What can't be removed stays, with what tells where it came from. A stop
  /// request ends between two files: what was begun is put back as far as it is left.
  virtual TrashEmptying empty(const EmptyingProgress& progress, const std::stop_token& stop) = 0;
};

}  // namespace lumenary
