#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/AppRegistry.h"

namespace lumenary {

struct InstallerTarget {
  std::string name;  ///< of the app, for people
  bool isInstalled = false;

  bool operator==(const InstallerTarget&) const = default;
};

/// What the installer of this file name installs, cut from the name: what stands before a version, a kind of machine
/// and the like. "Foo-2.1.dmg" is Foo, "google-chrome-stable_120.0_amd64.deb" is google-chrome-stable. Empty for a name
/// that isn't an installer's, or tells nothing.
std::string installedName(std::string_view fileName);

/// The app that an installer is for; none for any other file.
std::optional<InstallerTarget> installerTarget(std::string_view path, std::span<const RegisteredApp> apps);

}  // namespace lumenary
