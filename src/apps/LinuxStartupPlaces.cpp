#include "apps/LinuxStartupPlaces.h"

#include <algorithm>
#include <string_view>

#include "base/Path.h"

namespace lumenary {
namespace {

using Domain = BackgroundItem::Domain;

/// The pieces between colons, without empty ones.
std::vector<std::string> pieces(std::string_view list) {
  std::vector<std::string> all;
  while (!list.empty()) {
    const std::size_t end = std::min(list.find(':'), list.size());
    if (end > 0) {
      all.emplace_back(list.substr(0, end));
    }
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  return all;
}

std::vector<std::string> absoluteFolders(std::string_view list) {
  std::vector<std::string> folders = pieces(list);
  std::erase_if(folders, [](const std::string& folder) { return !folder.starts_with('/'); });
  for (std::string& folder : folders) {
    folder = standardised(std::move(folder));
  }
  return folders;
}

}  // namespace

LinuxStartupPlaces linuxStartupPlaces(const Environment& environment, const Places& places) {
  const auto variable = [&](const char* name, std::string_view otherwise) {
    const char* const value = environment(name);
    return std::string(value == nullptr || *value == '\0' ? otherwise : value);
  };
  LinuxStartupPlaces startup;
  if (!places.home.empty()) {
    startup.userUnits = {{places.configHome + "/systemd/user", Domain::user}};
    startup.autostart = {{places.configHome + "/autostart", Domain::user}};
  }
  startup.userUnits.push_back({"/etc/systemd/user", Domain::allUsers});
  startup.userUnits.push_back({"/run/systemd/user", Domain::allUsers});
  if (!places.home.empty()) {
    startup.userUnits.push_back({places.dataHome + "/systemd/user", Domain::user});
  }
  startup.userUnits.push_back({"/usr/local/lib/systemd/user", Domain::allUsers});
  startup.userUnits.push_back({"/usr/lib/systemd/user", Domain::allUsers});
  for (const char* const path :
       {"/etc/systemd/system", "/run/systemd/system", "/usr/lib/systemd/system", "/lib/systemd/system"}) {
    startup.systemUnits.push_back({path, Domain::system});
  }
  for (const std::string& folder : absoluteFolders(variable("XDG_CONFIG_DIRS", "/etc/xdg"))) {
    startup.autostart.push_back({folder + "/autostart", Domain::allUsers});
  }
  startup.home = places.home;
  startup.userName = variable("USER", "");
  startup.desktops = pieces(variable("XDG_CURRENT_DESKTOP", ""));
  startup.programFolders = absoluteFolders(variable("PATH", "/usr/local/bin:/usr/bin:/bin"));
  return startup;
}

}  // namespace lumenary
