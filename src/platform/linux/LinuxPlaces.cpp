#include "platform/linux/LinuxPlaces.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <vector>

#include "base/Path.h"

namespace lumenary {
namespace {

/// Empty where there is no such account; none where the database can't be asked.
std::optional<std::string> homeByPasswordDatabase(uid_t user) {
  std::vector<char> buffer(1024);
  passwd entry{};
  passwd* found = nullptr;
  int error = 0;
  while ((error = ::getpwuid_r(user, &entry, buffer.data(), buffer.size(), &found)) == ERANGE || error == EINTR) {
    if (error == ERANGE) {
      buffer.resize(2 * buffer.size());
    }
  }
  // Some databases say so of an account that they don't know.
  const bool isUnknown = error == ENOENT || error == ESRCH || error == EBADF || error == EPERM;
  if (found == nullptr && error != 0 && !isUnknown) {
    return std::nullopt;
  }
  return found == nullptr || found->pw_dir == nullptr ? std::string() : found->pw_dir;
}

/// Only an absolute path counts; anything else would mean another place in each current folder.
std::string absolute(std::string_view path) { return path.starts_with('/') ? standardise(path) : std::string(); }

std::string below(const std::string& folder, std::string_view relative) {
  return folder.empty() ? std::string() : appendingPathComponent(folder, relative);
}

}  // namespace

std::optional<std::string> accountHomeOf(std::uint32_t userID) {
  return homeByPasswordDatabase(userID).transform([](const std::string& home) { return absolute(home); });
}

Places placesOf(const Environment& environment) {
  const auto variable = [&](const char* name) {
    const char* const value = environment(name);
    return absolute(value == nullptr ? std::string_view() : value);
  };
  Places places;
  places.userID = ::geteuid();
  places.home = variable("HOME");
  if (places.home.empty()) {
    places.home = accountHomeOf(places.userID).value_or("");
  }
  const auto folder = [&](const char* name, std::string_view standard) {
    std::string path = variable(name);
    return path.empty() ? below(places.home, standard) : path;
  };
  places.dataHome = folder("XDG_DATA_HOME", ".local/share");
  places.configHome = folder("XDG_CONFIG_HOME", ".config");
  places.cacheHome = folder("XDG_CACHE_HOME", ".cache");
  places.stateHome = folder("XDG_STATE_HOME", ".local/state");
  places.support = below(places.dataHome, "Lumenary");
  places.defaultsFile = below(places.configHome, "Lumenary/defaults.json");
  places.homesFolder = "/home";
  places.driveFolders = {"/media", "/run/media", "/mnt"};
  // Inside of one of these the program may see a home folder that isn't the person's whole one.
  places.hasFullDiskAccess = environment("FLATPAK_ID") == nullptr && environment("SNAP") == nullptr;
  return places;
}

}  // namespace lumenary
