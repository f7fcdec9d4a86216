#include "platform/linux/LinuxAppRegistry.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>

#include "base/Path.h"
#include "base/Text.h"
#include "platform/linux/LinuxAppImages.h"
#include "platform/linux/LinuxDesktopApps.h"
#include "platform/linux/LinuxFlatpaks.h"
#include "platform/linux/LinuxSnaps.h"

namespace lumenary {
namespace {

/// An entry that starts an AppImage stands for that file.
void makeAppImage(RegisteredApp& app) {
  AppImageName told = appImageName(lastPathComponent(app.program));
  app.path = app.program;
  app.origin = AppOrigin::appImage;
  app.version = std::move(told.version);
  app.ownFolders.clear();
  std::erase(app.dataNames, lastPathComponent(app.program));
  if (std::ranges::find(app.dataNames, told.name) == app.dataNames.end()) {
    app.dataNames.push_back(std::move(told.name));
  }
}

/// A folder that several apps share is nobody's own.
void dropSharedFolders(std::vector<RegisteredApp>& apps) {
  std::map<std::string, int> owners;
  for (const RegisteredApp& app : apps) {
    for (const std::string& folder : app.ownFolders) {
      ++owners[folder];
    }
  }
  for (RegisteredApp& app : apps) {
    std::erase_if(app.ownFolders, [&](const std::string& folder) { return owners[folder] > 1; });
  }
}

}  // namespace

std::vector<RegisteredApp> LinuxAppRegistry::apps() const {
  const std::vector<DesktopApp> entries = desktopApps(reader_, files_, roots_);
  std::vector<RegisteredApp> apps;
  std::set<std::string> paths;
  const auto add = [&](RegisteredApp app) {
    if (paths.insert(app.path).second) {
      apps.push_back(std::move(app));
    }
  };
  for (const DesktopApp& entry : entries) {
    if (!entry.flatpakID.empty() || !entry.snap.empty()) {
      continue;
    }
    RegisteredApp app = entry.app;
    if (isAppImage(app.program)) {
      makeAppImage(app);
    }
    add(std::move(app));
  }
  std::ranges::for_each(flatpakApps(reader_, files_, roots_), add);
  std::ranges::for_each(snapApps(reader_, files_, roots_, entries), add);
  std::ranges::for_each(appImages(reader_, roots_), add);
  dropSharedFolders(apps);
  return apps;
}

bool LinuxAppRegistry::isInstalled(std::string_view id) const {
  const std::string lowered = loweredASCII(id);
  const bool isInContainer =
      std::ranges::any_of(roots_.containerMarkers, [&](const std::string& marker) { return reader_.exists(marker); });
  return isInContainer || hasDesktopEntry(lowered) || isSnapInstalled(reader_, roots_, lowered) ||
         isAppImageOf(lowered) || isFlatpakInstalled(reader_, files_, roots_, lowered);
}

/// One that no menu shows counts as well: what it starts is there.
bool LinuxAppRegistry::hasDesktopEntry(std::string_view lowered) const {
  return std::ranges::any_of(roots_.applicationFolders, [&](const std::string& folder) {
    const auto files = desktopFiles(reader_, folder);
    if (!files) {
      return !files.error().isMissing();
    }
    return std::ranges::any_of(*files, [&](const DesktopFile& file) {
      // An entry that a Flatpak or snap left behind leads nowhere.
      return equalsIgnoringCase(file.id, lowered) && reader_.exists(file.path);
    });
  });
}

/// The file's name holds at most the last piece of an identifier.
bool LinuxAppRegistry::isAppImageOf(std::string_view lowered) const {
  const std::string_view last = lowered.substr(lowered.rfind('.') + 1);
  return std::ranges::any_of(appImages(reader_, roots_), [&](const RegisteredApp& app) {
    return equalsIgnoringCase(app.id, lowered) || equalsIgnoringCase(app.id, last);
  });
}

std::vector<std::string> LinuxAppRegistry::watchedFolders() const {
  std::vector<std::string> folders = roots_.applicationFolders;
  for (const std::string& installation : roots_.flatpakInstallations) {
    folders.push_back(installation + "/app");
  }
  std::ranges::copy(roots_.snapFolders, std::back_inserter(folders));
  std::ranges::copy(roots_.appImageFolders, std::back_inserter(folders));
  std::set<std::string> seen;
  std::erase_if(folders, [&](const std::string& folder) {
    const auto found = reader_.attributes(folder, LinkPolicy::follow);
    return !found || found->identity.kind != FileKind::folder || !seen.insert(folder).second;
  });
  return folders;
}

}  // namespace lumenary
