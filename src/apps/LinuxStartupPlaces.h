#pragma once

#include <string>
#include <vector>

#include "apps/BackgroundItem.h"
#include "platform/Places.h"
#include "platform/linux/LinuxPlaces.h"

namespace lumenary {

/// A folder in which files stand that make programs start.
struct StartupFolder {
  std::string path;
  BackgroundItem::Domain domain = BackgroundItem::Domain::user;
};

/// Where Linux keeps what starts on its own. In each list the nearest folder stands first: its files count before those
/// of the same name behind it.
struct LinuxStartupPlaces {
  std::vector<StartupFolder> userUnits;     ///< of the systemd that each person has
  std::vector<StartupFolder> systemUnits;   ///< of the one that the computer has
  std::vector<StartupFolder> autostart;     ///< desktop entries; the first folder is the person's own
  std::string home;                         ///< the specifier %h of the person's units
  std::string userName;                     ///< the specifier %u; empty where it can't be told
  std::vector<std::string> desktops;        ///< $XDG_CURRENT_DESKTOP; empty where no desktop tells its name
  std::vector<std::string> programFolders;  ///< $PATH
  std::string systemctl = "/usr/bin/systemctl";
};

LinuxStartupPlaces linuxStartupPlaces(const Environment& environment, const Places& places);

}  // namespace lumenary
