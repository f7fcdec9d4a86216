#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace lumenary {

/// Where this person's things are. A variable that is unset, empty or relative means its default.
struct Places {
  std::string home;          ///< empty where it can't be told; nothing may be moved then
  std::string accountHome;   ///< by the password database, whatever $HOME says; empty where it can't be told
  std::string dataHome;      ///< $XDG_DATA_HOME, ~/.local/share
  std::string configHome;    ///< $XDG_CONFIG_HOME, ~/.config
  std::string cacheHome;     ///< $XDG_CACHE_HOME, ~/.cache
  std::string stateHome;     ///< $XDG_STATE_HOME, ~/.local/state
  std::string support;       ///< the program's own files: dataHome/Lumenary
  std::string defaultsFile;  ///< the settings both faces read: configHome/Lumenary/defaults.json
  std::uint32_t userID = 0;
  std::string homesFolder;                ///< the folder in which people have their homes
  std::vector<std::string> driveFolders;  ///< drives that a person plugs in are mounted below these
  bool hasFullDiskAccess = true;          ///< false where the system hides parts of the home folder from this program
  /// What the desktop calls the person's folders, "~/Bilder", where they have been read; see `withUserFolders`.
  std::vector<std::string> personalFolders{};
  std::string downloads{};  ///< the one for downloads{}; empty where it isn't told

  bool operator==(const Places&) const = default;
};

}  // namespace lumenary
