#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/AppRegistry.h"
#include "platform/DurableFiles.h"
#include "platform/FileReader.h"
#include "platform/linux/LinuxAppRoots.h"

namespace lumenary {

/// The Flatpak apps of all installations, known by their folder in the installation, of each identifier the first.
std::vector<RegisteredApp> flatpakApps(const FileReader& reader, DurableFiles& files, const LinuxAppRoots& roots);

/// Whether a Flatpak of this identifier, an app or what apps run on, is installed anywhere, in any case; true where one
/// of the places can't be read.
bool isFlatpakInstalled(const FileReader& reader, DurableFiles& files, const LinuxAppRoots& roots, std::string_view id);

}  // namespace lumenary
