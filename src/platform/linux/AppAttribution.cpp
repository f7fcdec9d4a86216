#include "platform/linux/AppAttribution.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/Path.h"
#include "base/Text.h"

namespace lumenary {
namespace {

using Index = std::map<std::string, const RegisteredApp*, std::less<>>;

/// They run what others wrote: "python3.11", "bash". An entry that starts one hides whose program it is.
bool runsOthers(std::string_view program) {
  constexpr std::array names = std::to_array<std::string_view>(
      {"bash",         "bwrap", "dash",        "dbus-launch", "deno",     "electron", "env",    "flatpak",
       "gapplication", "gjs",   "gjs-console", "java",        "lua",      "node",     "pkexec", "sh",
       "snap",         "sudo",  "systemd-run", "wine",        "xdg-open", "xterm",    "zsh"});
  constexpr std::array beginnings = std::to_array<std::string_view>({"python", "perl", "ruby", "php", "mono", "guile"});
  const std::string_view name = lastPathComponent(program);
  return std::ranges::find(names, name) != names.end() ||
         std::ranges::any_of(beginnings, [&](std::string_view beginning) { return name.starts_with(beginning); });
}

/// A key of two apps is nobody's.
void add(Index& index, const std::string& key, const RegisteredApp& app) {
  const auto [at, isNew] = index.emplace(key, &app);
  if (!isNew) {
    at->second = nullptr;
  }
}

const RegisteredApp* find(const Index& index, std::string_view key) {
  const auto found = index.find(key);
  return found == index.end() ? nullptr : found->second;
}

}  // namespace

AppAttribution::AppAttribution(std::vector<RegisteredApp> apps) : apps_(std::move(apps)) {
  for (const RegisteredApp& app : apps_) {
    byID_.emplace(loweredASCII(app.id), &app);
    if (!app.program.empty() && !runsOthers(app.program)) {
      add(byProgram_, app.program, app);
    }
    for (const std::string& folder : app.ownFolders) {
      add(byFolder_, folder, app);
    }
  }
}

const RegisteredApp* AppAttribution::appOf(std::string_view controlGroupID, std::string_view executable) const {
  if (!controlGroupID.empty()) {
    if (const RegisteredApp* const app = find(byID_, loweredASCII(controlGroupID))) {
      return app;
    }
  }
  if (const RegisteredApp* const app = find(byProgram_, executable)) {
    return app;
  }
  for (std::string_view folder = executable; folder.size() > 1;) {
    folder = parentPath(folder);
    if (const RegisteredApp* const app = find(byFolder_, folder)) {
      return app;
    }
  }
  return nullptr;
}

}  // namespace lumenary
