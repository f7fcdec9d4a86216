#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumenary {

enum class AppOrigin : std::uint8_t {
  bundle,        ///< a folder that is the app
  desktopEntry,  ///< of the distribution, or put there by hand
  flatpak,
  snap,
  appImage,  ///< a file that is the app
};

/// An app as the system knows it.
struct RegisteredApp {
  std::string path;  ///< what it is known by on the disk, unique: its bundle, its desktop entry, its AppImage
  std::string id;    ///< bundle identifier, desktop id without ".desktop", Flatpak id, name of the snap
  std::string name;  ///< for people
  std::optional<std::string> version{};
  AppOrigin origin = AppOrigin::desktopEntry;
  std::string program{};                  ///< the file that it starts, links resolved; empty where that can't be told
  std::vector<std::string> ownFolders{};  ///< hold its files and nobody else's: "/opt/google/chrome"
  std::vector<std::string> dataNames{};   ///< further names under which it may keep data, the surest first

  bool operator==(const RegisteredApp&) const = default;
};

/// The apps that are installed. All operations read the disk and may be called from any thread.
class AppRegistry {
 public:
  virtual ~AppRegistry() = default;
  /// All apps that a person can start, each once.
  virtual std::vector<RegisteredApp> apps() const = 0;
  /// Whether an app of this identifier stands anywhere outside of the Trash, the id in any case. True as well where it
  /// can't be told.
  virtual bool isInstalled(std::string_view id) const = 0;
  /// The folders whose change tells that apps came or went; those that don't exist are left out.
  virtual std::vector<std::string> watchedFolders() const = 0;
};

}  // namespace lumenary
