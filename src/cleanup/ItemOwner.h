#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/AppRegistry.h"
#include "platform/Places.h"

namespace lumenary {

/// The app that a folder was made by, read from the folder's path and from what is installed.
struct ItemOwner {
  std::string name;                 ///< for people
  std::optional<bool> isInstalled;  ///< none where that isn't known
  /// The name came from an identifier, so that a missing app means something.
  bool isIdentifier = false;
  bool isMakersHelper = false;  ///< of a maker of whom other apps are installed

  bool operator==(const ItemOwner&) const = default;

  /// Its app was installed once and isn't any more.
  bool isGone() const { return isIdentifier && !isMakersHelper && isInstalled == false; }

  /// None for a path that isn't in an app's folder. `path` is absolute and standardised. Asks the registry.
  static std::optional<ItemOwner> of(std::string_view path, const Places& places, const AppRegistry& registry);
};

/// What people may call the app of an identifier: "com.acme.PhotoTool" is Photo Tool, "com.acme.helper" Acme Helper.
std::string readableName(std::string_view identifier);

/// True for a name such as "com.acme.Tool": at least three words, the first of which is the end of a host's name.
bool isReverseHostName(std::string_view name);

}  // namespace lumenary
