#include "platform/linux/LinuxDesktopApps.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "base/Path.h"
#include "base/Text.h"
#include "platform/linux/DesktopEntry.h"
#include "platform/linux/ExecLine.h"
#include "platform/linux/FolderNames.h"

namespace lumenary {
namespace {

constexpr std::string_view extension = ".desktop";
constexpr std::size_t byteLimit = std::size_t{256} * 1024;
constexpr std::size_t mostFolders = 200;
constexpr std::size_t mostFiles = 20'000;

using Keys = std::map<std::string, std::string, std::less<>>;

std::string textAt(const Keys& keys, std::string_view key) {
  const auto found = keys.find(key);
  return found == keys.end() ? std::string() : desktopEntryText(found->second);
}

bool isTrue(const Keys& keys, std::string_view key) { return textAt(keys, key) == "true"; }

void addOnce(std::vector<std::string>& names, std::string name) {
  if (!name.empty() && std::ranges::find(names, name) == names.end()) {
    names.push_back(std::move(name));
  }
}

}  // namespace

SystemResult<std::vector<DesktopFile>> desktopFiles(const FileReader& reader, const std::string& folder) {
  std::vector<DesktopFile> files;
  std::vector<std::pair<std::string, std::string>> waiting = {{folder, ""}};  // with what ids begin with there
  for (std::size_t next = 0; next < waiting.size() && next < mostFolders; ++next) {
    const auto [path, prefix] = waiting[next];
    const auto entries = folderNames(reader, path);
    if (!entries && next == 0) {
      return std::unexpected(entries.error());
    }
    for (const auto& [name, kind] : entries.value_or(FolderNames())) {
      if (kind == FileKind::folder) {
        waiting.emplace_back(appendingPathComponent(path, name), prefix + name + "-");
      } else if (name.ends_with(extension) && files.size() < mostFiles) {
        files.push_back({.path = appendingPathComponent(path, name),
                         .id = prefix + name.substr(0, name.size() - extension.size())});
      }
    }
  }
  return files;
}

std::optional<DesktopApp> desktopApp(const FileReader& reader, DurableFiles& files, const LinuxAppRoots& roots,
                                     const DesktopFile& file) {
  const auto text = files.read(file.path, byteLimit);
  const Keys keys = text ? parseDesktopEntry(*text) : Keys();
  if (textAt(keys, "Type") != "Application" || isTrue(keys, "NoDisplay") || isTrue(keys, "Hidden") ||
      isTrue(keys, "Terminal")) {
    return std::nullopt;
  }
  const auto exec = keys.find("Exec");
  const auto words = exec == keys.end() ? std::nullopt : parseExecLine(exec->second);
  const StartedProgram started = words ? startedProgram(*words) : StartedProgram();
  const std::string tried = textAt(keys, "TryExec");
  if (!tried.empty() && programFile(reader, roots, tried).empty()) {
    return std::nullopt;
  }
  DesktopApp found{.app = {.path = file.path, .id = file.id, .name = displayText(textAt(keys, "Name"))}};
  found.flatpakID = keys.contains("X-Flatpak") ? textAt(keys, "X-Flatpak") : started.flatpakID;
  found.snap = keys.contains("X-SnapInstanceName") ? textAt(keys, "X-SnapInstanceName") : started.snap;
  found.command = started.name;
  if (found.app.name.empty()) {
    found.app.name = displayText(file.id);
  }
  if (started.isGuest || !found.flatpakID.empty()) {
    return found;
  }
  found.app.program = programFile(reader, roots, started.name);
  if (std::string own = ownFolder(roots, found.app.program); !own.empty()) {
    found.app.ownFolders = {std::move(own)};
  }
  for (const std::string_view name : {lastPathComponent(started.name), lastPathComponent(found.app.program)}) {
    if (!started.name.empty() && name != "/" && !isInterpreter(name)) {
      addOnce(found.app.dataNames, std::string(name));
    }
  }
  addOnce(found.app.dataNames, textAt(keys, "StartupWMClass"));
  return found;
}

std::vector<DesktopApp> desktopApps(const FileReader& reader, DurableFiles& files, const LinuxAppRoots& roots) {
  std::vector<DesktopApp> apps;
  std::set<std::string> seen;
  for (const std::string& folder : roots.applicationFolders) {
    for (const DesktopFile& file : desktopFiles(reader, folder).value_or(std::vector<DesktopFile>())) {
      if (!seen.insert(file.id).second) {
        continue;
      }
      if (auto app = desktopApp(reader, files, roots, file)) {
        apps.push_back(*std::move(app));
      }
    }
  }
  return apps;
}

}  // namespace lumenary
