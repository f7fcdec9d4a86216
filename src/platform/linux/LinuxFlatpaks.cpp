#include "platform/linux/LinuxFlatpaks.h"

#include <algorithm>
#include <set>
#include <utility>

#include "base/Path.h"
#include "base/Text.h"
#include "platform/linux/ExecLine.h"
#include "platform/linux/FolderNames.h"
#include "platform/linux/LinuxDesktopApps.h"

namespace lumenary {
namespace {

constexpr std::size_t byteLimit = std::size_t{64} * 1024;

struct Installation {
  std::string path;
  bool mayBeMissing = true;
};

/// The "Path" of each "[Installation …]" in a configuration file.
std::vector<std::string> installationPaths(std::string_view text) {
  constexpr std::string_view key = "Path=";
  std::vector<std::string> paths;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.starts_with(key) && line.substr(key.size()).starts_with('/')) {
      paths.push_back(standardise(line.substr(key.size(), line.find_last_not_of(" \t\r") + 1 - key.size())));
    }
  }
  return paths;
}

std::vector<Installation> installations(const FileReader& reader, DurableFiles& files, const LinuxAppRoots& roots) {
  std::vector<Installation> all;
  all.reserve(roots.flatpakInstallations.size());
  for (const std::string& path : roots.flatpakInstallations) {
    all.push_back({.path = path});
  }
  const auto configurations = folderNames(reader, roots.flatpakConfigurations).value_or(FolderNames());
  for (const auto& [name, kind] : configurations) {
    const auto text = files.read(appendingPathComponent(roots.flatpakConfigurations, name), byteLimit);
    for (std::string& path : installationPaths(text.value_or(""))) {
      // One that was set up stands somewhere: on a drive that is away, where this one's folder is missing.
      all.push_back({.path = std::move(path), .mayBeMissing = false});
    }
  }
  return all;
}

/// False only where it is sure that nothing stands there.
bool mayStand(const FileReader& reader, const std::string& path) {
  const auto found = reader.attributes(path, LinkPolicy::follow);
  return found || !found.error().isMissing();
}

/// A folder "ARCHITECTURE/BRANCH/active" or "current" tells that it isn't the remains of one.
bool isDeployed(const FileReader& reader, const std::string& appFolder) {
  if (mayStand(reader, appFolder + "/current/active")) {
    return true;
  }
  for (const auto& [architecture, kind] : folderNames(reader, appFolder).value_or(FolderNames())) {
    const std::string branches = appendingPathComponent(appFolder, architecture);
    for (const auto& [branch, kindOfBranch] : folderNames(reader, branches).value_or(FolderNames())) {
      if (mayStand(reader, appendingPathComponent(branches, branch) + "/active")) {
        return true;
      }
    }
  }
  return false;
}

RegisteredApp flatpakApp(const FileReader& reader, DurableFiles& files, const LinuxAppRoots& roots,
                         const std::string& folder, const std::string& id) {
  RegisteredApp app{
      .path = folder, .id = id, .name = displayText(id), .origin = AppOrigin::flatpak, .ownFolders = {folder}};
  const std::string active = folder + "/current/active";
  // The entry is found in its exported form, which tells the command to run inside as well.
  const auto entry =
      desktopApp(reader, files, roots, {.path = active + "/export/share/applications/" + id + ".desktop", .id = id});
  if (entry) {
    app.name = entry->app.name;
    if (!entry->command.empty()) {
      app.program = programFile(reader, roots, active + "/files/bin/" + std::string(lastPathComponent(entry->command)));
    }
  }
  return app;
}

}  // namespace

std::vector<RegisteredApp> flatpakApps(const FileReader& reader, DurableFiles& files, const LinuxAppRoots& roots) {
  std::vector<RegisteredApp> apps;
  std::set<std::string> seen;
  for (const Installation& installation : installations(reader, files, roots)) {
    const std::string folder = installation.path + "/app";
    for (const auto& [id, kind] : folderNames(reader, folder).value_or(FolderNames())) {
      const std::string appFolder = appendingPathComponent(folder, id);
      if (isDeployed(reader, appFolder) && seen.insert(id).second) {
        apps.push_back(flatpakApp(reader, files, roots, appFolder, id));
      }
    }
  }
  return apps;
}

bool isFlatpakInstalled(const FileReader& reader, DurableFiles& files, const LinuxAppRoots& roots,
                        std::string_view id) {
  const std::string lowered = loweredASCII(id);
  for (const Installation& installation : installations(reader, files, roots)) {
    for (const char* const kindFolder : {"/app", "/runtime"}) {
      const std::string folder = installation.path + kindFolder;
      const auto names = folderNames(reader, folder);
      if (!names) {
        // An installation whose folder for apps wasn't made yet has none.
        if (names.error().isMissing() && (installation.mayBeMissing || reader.exists(installation.path))) {
          continue;
        }
        return true;
      }
      const bool isThere = std::ranges::any_of(*names, [&](const auto& entry) {
        return equalsIgnoringCase(entry.first, lowered) &&
               isDeployed(reader, appendingPathComponent(folder, entry.first));
      });
      if (isThere) {
        return true;
      }
    }
  }
  return false;
}

}  // namespace lumenary
