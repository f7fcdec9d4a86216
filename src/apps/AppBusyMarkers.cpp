#include "apps/AppBusyMarkers.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "base/Path.h"
#include "base/Unicode.h"

namespace lumenary {
namespace {

/// What the command lines of an app's processes hold.
std::vector<std::string> markersOf(const RegisteredApp& app) {
  std::vector<std::string> markers;
  if (app.origin == AppOrigin::flatpak) {
    markers.push_back(app.id);
  }
  if (app.origin == AppOrigin::snap) {
    markers.push_back(app.path + "/");
  }
  for (const std::string& folder : app.ownFolders) {
    markers.push_back(folder + "/");
  }
  // A program without a name of its own in `dataNames` runs others as well: "python3".
  const std::string_view program = lastPathComponent(app.program);
  const bool isItsOwn = std::ranges::find(app.dataNames, program) != app.dataNames.end();
  if (!app.program.empty() && (isItsOwn || app.origin == AppOrigin::appImage)) {
    markers.push_back(app.program);
    // As it is started by its plain name.
    markers.push_back("/" + std::string(program) + " ");
    markers.push_back("/" + std::string(program) + "\n");
  }
  return markers;
}

}  // namespace

std::vector<InUseMarker> appBusyMarkers(std::span<const RegisteredApp> apps) {
  std::map<std::string, std::set<std::string>> markersByTitle;
  for (const RegisteredApp& app : apps) {
    const std::vector<std::string> markers = markersOf(app);
    std::vector<std::string> names = app.dataNames;
    names.push_back(app.id);
    for (std::string& name : names) {
      name = capitalised(name);  // as a cache is called whose folder has this name
    }
    names.push_back(app.name);
    for (const std::string& name : names) {
      if (!markers.empty()) {
        markersByTitle[name + " cache"].insert(markers.begin(), markers.end());
      }
    }
  }
  std::vector<InUseMarker> rows;
  rows.reserve(markersByTitle.size());
  for (auto& [title, markers] : markersByTitle) {
    rows.push_back({.title = title, .markers = {markers.begin(), markers.end()}});
  }
  return rows;
}

}  // namespace lumenary
