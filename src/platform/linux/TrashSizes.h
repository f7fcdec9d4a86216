#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/TrashFolder.h"

namespace lumenary {

/// What a run changed in the `directorysizes` of one Trash: a cache in which file managers look up how much a trashed
/// folder holds. By name in `files`; no value for a folder that left the Trash.
struct FolderSize {
  std::int64_t allocatedBytes = 0;
  std::int64_t infoModifiedSeconds =
      0;  ///< of the info file; tells an entry from one of an earlier item of the same name
};
using FolderSizeChanges = std::map<std::string, std::optional<FolderSize>>;

/// The file's text with the changes applied: lines of "SIZE SECONDS NAME", the name percent-encoded. Lines that aren't
/// of this form are dropped.
std::string updatedFolderSizes(std::string_view text, const FolderSizeChanges& changes);

/// Reads, changes and replaces the file as a whole. Best effort: it is a cache.
void writeFolderSizes(LinuxKernel& kernel, const TrashFolder& trash, const FolderSizeChanges& changes);

}  // namespace lumenary
