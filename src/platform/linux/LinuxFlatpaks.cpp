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
  constexpr std::string_view key = "Path";
  constexpr std::string_view blanks = " \t\r";
  std::vector<std::string> paths;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) {
      continue;
    }
    const std::string_view name = line.substr(0, line.find_last_not_of(" \t=", equals) + 1);
    const std::size_t start = line.find_first_not_of(blanks, equals + 1);
    if (name == key && start != std::string_view::npos && line[start] == '/') {
      paths.push_back(standardise(line.substr(start, line.find_last_not_of(blanks) + 1 - start)));
    }
  }
  return paths;
}

struct Installations {
  std::vector<Installation> all;
  bool isComplete = true;  ///< false where there may be more that can't be read
};

Installations installations(const FileReader& reader, DurableFiles& files, const LinuxAppRoots& roots) {
  Installations found;
  found.all.reserve(roots.flatpakInstallations.size());
  for (const std::string& path : roots.flatpakInstallations) {
    found.all.push_back({.path = path});
  }
  const auto configurations = folderNames(reader, roots.flatpakConfigurations);
  if (!configurations) {
    found.isComplete = configurations.error().isMissing();
    return found;
  }
  for (const auto& [name, kind] : *configurations) {
    const auto text = files.read(appendingPathComponent(roots.flatpakConfigurations, name), byteLimit);
    found.isComplete = found.isComplete && (text || text.error().isMissing());
    for (std::string& path : installationPaths(text.value_or(""))) {
      // One that was set up stands somewhere: on a drive that is away, where this one's folder is missing.
      found.all.push_back({.path = std::move(path), .mayBeMissing = false});
    }
  }
  return found;
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
  for (const Installation& installation : installations(reader, files, roots).all) {
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
  const Installations known = installations(reader, files, roots);
  if (!known.isComplete) {
    return true;
  }
  for (const Installation& installation : known.all) {
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
