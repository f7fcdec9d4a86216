#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/FileReader.h"
#include "platform/linux/LinuxPlaces.h"

namespace lumenary {

/// Where apps may stand.
struct LinuxAppRoots {
  std::vector<std::string> applicationFolders;    ///< of desktop entries, the nearest first
  std::vector<std::string> flatpakInstallations;  ///< of the system and of the person; may be missing
  std::string flatpakConfigurations;              ///< a folder of files that name further installations
  std::vector<std::string> snapFolders;           ///< with a folder for each snap
  std::string snapFiles;                          ///< with the file of each revision of a snap
  /// One of them stands where this is a container: the stores of the machine around it can't be seen then.
  std::vector<std::string> containerMarkers;
  std::vector<std::string> appImageFolders;
  std::vector<std::string> programFolders;  ///< of $PATH
  std::vector<std::string> sharedFolders;   ///< a program's folder right in one of these is its own
};

LinuxAppRoots linuxAppRoots(const Environment& environment, const Places& places);

/// The file that a program's name or path leads to, links resolved; empty where there is none.
std::string programFile(const FileReader& reader, const LinuxAppRoots& roots, const std::string& name);

/// The folder with the program's files and nobody else's; empty where it stands in a shared one.
std::string ownFolder(const LinuxAppRoots& roots, std::string_view program);

}  // namespace lumenary
