#pragma once

#include <optional>
#include <span>
#include <string>

#include "base/Date.h"
#include "platform/FileMetadata.h"
#include "platform/FileReader.h"

namespace lumenary {

struct UseDate {
  Date date;
  bool isOpened = false;  ///< somebody opened it then; otherwise it was changed then

  bool operator==(const UseDate&) const = default;
};

/// How many things are looked at below each folder.
inline constexpr std::size_t useEntryLimit = 4000;

/// The newest date at which a folder of these, or what stands in it, was changed: of `useEntryLimit` things in each. No
/// link is followed, no other volume entered, and what an app shows as one thing counts without what is in it.
std::optional<UseDate> lastChangeBelow(const FileReader& reader, std::span<const std::string> folders);

/// When one of these files was last opened; where that isn't known, when one was last changed.
std::optional<UseDate> lastUseOfFiles(const FileReader& reader, const FileMetadata& metadata,
                                      std::span<const std::string> files);

}  // namespace lumenary
