#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/Date.h"
#include "base/FileURL.h"
#include "base/UUID.h"
#include "platform/FileIdentity.h"
#include "storage/StorageCategory.h"

namespace lumenary {

/// One measured item.
struct FileEntry {
  enum class Kind : std::uint8_t { file, directory, symbolicLink };

  UUID id;  ///< fresh for each record
  FileURL url;
  std::string name;  ///< the last component of the path
  Kind kind = Kind::file;
  std::int64_t byteCount = 0;  ///< allocated on the disk
  std::optional<Date> modifiedAt;
  StorageCategory category = StorageCategory::unclassified;
  /// Which thing was measured, where the scan has just seen it and its file system keeps such numbers. It isn't stored.
  std::optional<FileIdentity> identity{};

  bool operator==(const FileEntry&) const = default;
};

std::string_view rawValue(FileEntry::Kind kind);
std::optional<FileEntry::Kind> fileEntryKindOf(std::string_view rawValue);

}  // namespace lumenary
