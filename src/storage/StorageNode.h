#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "storage/FileEntry.h"

namespace lumenary {

/// One folder or file of the tree that a person browses. The path is its identity.
struct StorageNode {
  std::string path;  ///< absolute
  std::string name;
  std::int64_t byteCount = 0;
  std::optional<FileEntry> file;  ///< absent for a folder

  bool isFolder() const { return !file; }
  /// The measured file, or a new record with a fresh id that stands for the folder.
  FileEntry asEntry() const;

  bool operator==(const StorageNode&) const = default;
};

}  // namespace lumenary
