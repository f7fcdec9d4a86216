#include "platform/linux/LinuxSnaps.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>

#include "base/Path.h"
#include "base/Text.h"
#include "platform/linux/FolderNames.h"

namespace lumenary {
namespace {

constexpr std::size_t byteLimit = std::size_t{256} * 1024;

/// The "version" at the top level of a snap's description.
std::optional<std::string> versionIn(std::string_view yaml) {
  constexpr std::string_view key = "version:";
  while (!yaml.empty()) {
    const std::size_t end = std::min(yaml.find('\n'), yaml.size());
    std::string_view line = yaml.substr(0, end);
    yaml.remove_prefix(std::min(end + 1, yaml.size()));
    if (!line.starts_with(key)) {
      continue;
    }
    line.remove_prefix(key.size());
    constexpr std::string_view around = " \t\r'\"";
    line.remove_prefix(std::min(line.find_first_not_of(around), line.size()));
    line = line.substr(0, line.find_last_not_of(around) + 1);
    return line.empty() ? std::nullopt : std::optional(displayText(line));
  }
  return std::nullopt;
}

/// Where the snap stands; empty where it doesn't.
std::string folderOf(const FileReader& reader, const LinuxAppRoots& roots, const std::string& snap) {
  for (const std::string& folder : roots.snapFolders) {
    const std::string path = appendingPathComponent(folder, snap);
    if (reader.exists(path + "/current")) {
      return path;
    }
  }
  return {};
}

/// What a snap consists of are the files that its revisions are mounted from: "firefox_4711.snap".
std::vector<std::string> revisionFiles(const FolderNames& files, const std::string& folder, const std::string& snap) {
  std::vector<std::string> paths;
  for (const auto& [name, kind] : files) {
    if (kind == FileKind::file && name.ends_with(".snap") && name.starts_with(snap + "_")) {
      paths.push_back(appendingPathComponent(folder, name));
    }
  }
  return paths;
}

}  // namespace

std::vector<RegisteredApp> snapApps(const FileReader& reader, DurableFiles& files, const LinuxAppRoots& roots,
                                    std::span<const DesktopApp> entries) {
  std::map<std::string, const DesktopApp*> entryOf;
  for (const DesktopApp& entry : entries) {
    if (entry.snap.empty() || entry.snap.contains('/')) {
      continue;
    }
    const DesktopApp*& kept = entryOf[entry.snap];
    // The entry of a snap's main program is called after the snap twice.
    if (kept == nullptr || entry.app.id == entry.snap + "_" + entry.snap) {
      kept = &entry;
    }
  }
  std::vector<RegisteredApp> apps;
  const FolderNames revisions = folderNames(reader, roots.snapFiles).value_or(FolderNames());
  for (const auto& [snap, entry] : entryOf) {
    const std::string folder = folderOf(reader, roots, snap);
    if (folder.empty()) {
      continue;
    }
    const auto description = files.read(folder + "/current/meta/snap.yaml", byteLimit);
    apps.push_back({.path = folder,
                    .id = snap,
                    .name = entry->app.name,
                    .version = versionIn(description.value_or("")),
                    .origin = AppOrigin::snap,
                    .program = {},
                    .ownFolders = revisionFiles(revisions, roots.snapFiles, snap)});
  }
  return apps;
}

bool isSnapInstalled(const FileReader& reader, const LinuxAppRoots& roots, std::string_view name) {
  const std::string lowered = loweredASCII(name);
  return std::ranges::any_of(roots.snapFolders, [&](const std::string& folder) {
    const auto names = folderNames(reader, folder);
    if (!names) {
      return !names.error().isMissing();
    }
    return std::ranges::any_of(*names, [&](const auto& entry) { return equalsIgnoringCase(entry.first, lowered); });
  });
}

}  // namespace lumenary
