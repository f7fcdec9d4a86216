#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "platform/AppRegistry.h"
#include "platform/DurableFiles.h"
#include "platform/FileReader.h"
#include "platform/linux/LinuxAppRoots.h"
#include "platform/linux/LinuxDesktopApps.h"

namespace lumenary {

/// The snaps that have one of these entries, each once, known by their folder.
std::vector<RegisteredApp> snapApps(const FileReader& reader, DurableFiles& files, const LinuxAppRoots& roots,
                                    std::span<const DesktopApp> entries);

/// Whether a snap of this name is installed, in any case; true where the folder of snaps can't be read.
bool isSnapInstalled(const FileReader& reader, const LinuxAppRoots& roots, std::string_view name);

}  // namespace lumenary
