#include "cleanup/OwnerFolder.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <utility>

#include "base/Path.h"
#include "base/Text.h"

namespace lumenary {
namespace {

constexpr std::array<std::string_view, 11> libraryFolders = {
    "caches", "application support",     "containers", "group containers",   "preferences", "logs", "httpstorages",
    "webkit", "saved application state", "cookies",    "application scripts"};

constexpr std::array<std::string_view, 3> libraryEndings = {".savedState", ".plist", ".binarycookies"};
constexpr std::array<std::string_view, 6> settingsEndings = {".conf", ".ini", ".json", ".toml", ".yaml", ".xml"};

/// In the folders for settings and data on Linux, what belongs to the session and not to one app.
constexpr std::array<std::string_view, 42> sharedOnLinux = {"applications",
                                                            "autostart",
                                                            "autostart-scripts",
                                                            "backgrounds",
                                                            "bash-completion",
                                                            "dbus-1",
                                                            "dconf",
                                                            "desktop-directories",
                                                            "environment.d",
                                                            "fish",
                                                            "flatpak",
                                                            "fontconfig",
                                                            "fonts",
                                                            "gtk-2.0",
                                                            "gtk-3.0",
                                                            "gtk-4.0",
                                                            "gvfs-metadata",
                                                            "icc",
                                                            "icons",
                                                            "ibus",
                                                            "keyrings",
                                                            "kio",
                                                            "locale",
                                                            "man",
                                                            "menus",
                                                            "mime",
                                                            "mimeapps.list",
                                                            "nautilus-scripts",
                                                            "pulse",
                                                            "recently-used.xbel",
                                                            "sounds",
                                                            "systemd",
                                                            "themes",
                                                            "thumbnails",
                                                            "trash",
                                                            "user-dirs.dirs",
                                                            "user-dirs.locale",
                                                            "user-places.xbel",
                                                            "wallpapers",
                                                            "xorg",
                                                            "xsettingsd",
                                                            "zsh"};

bool isOneOf(const auto& known, std::string_view text) {
  return std::ranges::any_of(known, [&](std::string_view one) { return equalsIgnoringCase(text, one); });
}

std::string_view firstComponent(std::string_view relative) { return relative.substr(0, relative.find('/')); }

/// What stands behind the folder in the path; empty where the path doesn't lead into it.
std::string_view below(std::string_view path, std::string_view folder) {
  const bool isBelow = !folder.empty() && path.size() > folder.size() && isSameOrInside(path, folder);
  return isBelow ? path.substr(folder.size() + 1) : std::string_view();
}

/// An ending is dropped where a name stands before it.
std::string_view withoutEnding(std::string_view name, std::span<const std::string_view> endings) {
  for (const std::string_view ending : endings) {
    if (name.size() > ending.size() && name.ends_with(ending)) {
      return name.substr(0, name.size() - ending.size());
    }
  }
  return name;
}

/// What stands behind the last component "Library".
std::string_view belowLibrary(std::string_view path) {
  constexpr std::string_view library = "library";
  for (std::size_t end = path.size(); end > 0;) {
    const std::size_t slash = path.rfind('/', end - 1);
    const std::size_t start = slash == std::string_view::npos ? 0 : slash + 1;
    if (equalsIgnoringCase(path.substr(start, end - start), library)) {
      return end < path.size() ? path.substr(end + 1) : std::string_view();
    }
    end = slash == std::string_view::npos ? 0 : slash;
  }
  return {};
}

std::optional<OwnerFolder> inLibrary(std::string_view path) {
  std::string_view rest = belowLibrary(path);
  const std::string_view kind = firstComponent(rest);
  if (kind.size() == rest.size() || !isOneOf(libraryFolders, kind)) {
    return std::nullopt;
  }
  rest.remove_prefix(kind.size() + 1);
  std::string_view name = withoutEnding(firstComponent(rest), libraryEndings);
  constexpr std::string_view group = "group.";
  name.remove_prefix(name.size() > group.size() && name.starts_with(group) ? group.size() : 0);
  if (name.empty()) {
    return std::nullopt;
  }
  const std::string lowered = loweredASCII(name);
  return OwnerFolder{.name = std::string(name),
                     .isOfSystem = lowered.starts_with("com.apple.") || lowered.starts_with("apple."),
                     .isInLibrary = true};
}

std::optional<OwnerFolder> onLinux(std::string_view path, const Places& places) {
  // Whatever stands in the first is an app's, by its identifier; a person may have a folder of their own in the second.
  for (const auto& [folder, isSure] : {std::pair("/.var/app", true), std::pair("/snap", false)}) {
    const std::string_view name = firstComponent(below(path, places.home + folder));
    if (!name.empty()) {
      return OwnerFolder{.name = std::string(name), .isSurelyIdentifier = isSure};
    }
  }
  for (const std::string& folder : {places.configHome, places.cacheHome, places.dataHome, places.stateHome}) {
    const std::string_view name = firstComponent(below(path, folder));
    if (!name.empty()) {
      const bool isShared = isOneOf(sharedOnLinux, name);
      return isShared ? std::nullopt
                      : std::optional(OwnerFolder{.name = std::string(withoutEnding(name, settingsEndings))});
    }
  }
  return std::nullopt;
}

}  // namespace

std::optional<OwnerFolder> ownerFolder(std::string_view path, const Places& places) {
  auto folder = inLibrary(path);
  return folder ? std::move(folder) : onLinux(path, places);
}

}  // namespace lumenary
