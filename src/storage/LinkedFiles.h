#pragma once

#include <cstdint>
#include <vector>

#include "storage/FileIdentitySet.h"
#include "storage/FolderTable.h"
#include "storage/LargestFiles.h"

namespace lumenary {

/// The files of a scan that have several names. Each counts once, in the folder of its smallest path: which one a
/// worker met first must not show.
class LinkedFiles {
 public:
  explicit LinkedFiles(const FolderTable& folders) : folders_(folders) {}

  struct Change {
    const TrackedFile* added = nullptr;    ///< where its bytes count from now on; null where nothing changes
    const TrackedFile* removed = nullptr;  ///< where they counted before; null for a file not met before
  };

  /// The answer holds until the next call. `file.name` is copied where it is needed.
  Change meet(const FileIdentity& identity, const TrackedFile& file);

  const std::vector<TrackedFile>& files() const { return files_; }

 private:
  const FolderTable& folders_;
  FileIdentitySet identities_;
  std::vector<TrackedFile> files_;  ///< by the number of their identity
  TrackedFile removed_;
  NameArena names_;
};

}  // namespace lumenary
