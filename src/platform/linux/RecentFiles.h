#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "base/Date.h"

namespace lumenary {

/// A file that an app of the desktop opened.
struct RecentFile {
  std::string path;  ///< absolute, standardised
  Date opened;       ///< the newest date that stands with it
};

/// Reads the list of recently used files (XBEL) from its beginning and hands over each local file of it. Keeps nothing
/// of what it read. False where the text isn't well-formed: what stood before that place was handed over.
bool forEachRecentFile(std::string_view text, const std::function<void(const RecentFile&)>& found);

}  // namespace lumenary
