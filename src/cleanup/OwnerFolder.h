#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/Places.h"

namespace lumenary {

/// The folder or file that is named after an app, in a place where apps keep their things.
struct OwnerFolder {
  std::string name;                 ///< without what is put around an app's name there
  bool isOfSystem = false;          ///< of macOS itself
  bool isSurelyIdentifier = false;  ///< nothing but an app's identifier may stand there
  bool isInLibrary = false;         ///< where an app that nobody knows any more was installed once

  bool operator==(const OwnerFolder&) const = default;
};

/// The one that holds `path` or is it: below a Library folder, or where apps on Linux keep data. None elsewhere, and
/// for what several apps share. `path` is absolute and standardised.
std::optional<OwnerFolder> ownerFolder(std::string_view path, const Places& places);

}  // namespace lumenary
