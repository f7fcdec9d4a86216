#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/FileIdentity.h"
#include "storage/FolderTable.h"
#include "storage/StorageCategory.h"

namespace lumenary {

/// A file big enough to be listed by name, as the scan keeps it.
struct TrackedFile {
  std::int64_t byteCount = 0;
  std::int64_t modifiedSeconds = 0;  ///< since 1970
  const char* name = nullptr;        ///< ends in NUL
  FolderID folderID = 0;             ///< the folder that holds it
  StorageCategory category = StorageCategory::unclassified;
  FileIdentity identity{};
};

/// The largest files of a scan, by bytes and equal ones by path, so that the choice doesn't depend on the order in
/// which they came. Bounded on any tree.
class LargestFiles {
 public:
  static constexpr std::int64_t smallestByteCount = 1'048'576;
  static constexpr std::size_t kept = 20'000;
  static constexpr std::size_t highMark = 60'000;

  /// `folders` must outlive the value.
  explicit LargestFiles(const FolderTable& folders) : folders_(folders) {}

  /// Keeps a copy of the name.
  void add(const TrackedFile& file);

  /// Largest first, `kept` at most; the names live as long as this value.
  const std::vector<TrackedFile>& sorted();

 private:
  bool isBefore(const TrackedFile& a, const TrackedFile& b) const;
  void cut();

  const FolderTable& folders_;
  std::vector<TrackedFile> files_;
  NameArena names_;
};

}  // namespace lumenary
