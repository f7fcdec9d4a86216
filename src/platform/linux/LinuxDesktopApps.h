#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/AppRegistry.h"
#include "platform/DurableFiles.h"
#include "platform/FileReader.h"
#include "platform/linux/LinuxAppRoots.h"

namespace lumenary {

/// A desktop entry that a person sees in a menu.
struct DesktopApp {
  RegisteredApp app;
  std::string flatpakID{};  ///< where a Flatpak put the entry there
  std::string snap{};       ///< where a snap did
  std::string command{};    ///< what it starts, as it is written there; for a Flatpak the command inside
};

/// The path and the identifier of each file ".desktop" below a folder: "kde4/foo.desktop" is "kde4-foo". Links to
/// folders aren't followed, and no more is read than menus hold. None where the folder can't be read.
struct DesktopFile {
  std::string path;
  std::string id;
};
SystemResult<std::vector<DesktopFile>> desktopFiles(const FileReader& reader, const std::string& folder);

/// One entry, whatever folder it stands in; none for what a menu doesn't show: helpers, commands for a terminal, what
/// the person took out, what lacks its program.
std::optional<DesktopApp> desktopApp(const FileReader& reader, DurableFiles& files, const LinuxAppRoots& roots,
                                     const DesktopFile& file);

/// All entries, of each identifier the nearest.
std::vector<DesktopApp> desktopApps(const FileReader& reader, DurableFiles& files, const LinuxAppRoots& roots);

}  // namespace lumenary
