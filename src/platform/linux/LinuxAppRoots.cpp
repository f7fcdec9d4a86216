#include "platform/linux/LinuxAppRoots.h"

#include <algorithm>
#include <array>

#include "base/Path.h"
#include "platform/linux/ExecLine.h"
#include "platform/linux/LinuxAppNames.h"

namespace lumenary {
namespace {

constexpr std::string_view standardPath = "/usr/local/bin:/usr/bin:/bin:/usr/games";
/// Folders inside of an app's own that hold its programs.
constexpr auto programParts = std::to_array<std::string_view>({"bin", "sbin", "program", "lib", "libexec"});

bool isFile(const FileReader& reader, const std::string& path) {
  const auto found = reader.attributes(path, LinkPolicy::follow);
  return found && found->identity.kind == FileKind::file;
}

}  // namespace

LinuxAppRoots linuxAppRoots(const Environment& environment, const Places& places) {
  LinuxAppRoots roots;
  roots.applicationFolders = applicationFolders(environment, places);
  roots.flatpakInstallations = {"/var/lib/flatpak", places.dataHome + "/flatpak"};
  roots.flatpakConfigurations = "/etc/flatpak/installations.d";
  roots.snapFolders = {"/snap", "/var/lib/snapd/snap"};
  roots.snapFiles = "/var/lib/snapd/snaps";
  const std::string& downloads = places.downloads.empty() ? places.home + "/Downloads" : places.downloads;
  roots.appImageFolders = {places.home + "/Applications", places.home + "/.local/bin", downloads, places.home + "/bin"};
  const char* const variable = environment("PATH");
  std::string_view rest = variable == nullptr || *variable == '\0' ? standardPath : variable;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find(':'), rest.size());
    if (rest.starts_with('/')) {
      roots.programFolders.push_back(standardise(rest.substr(0, end)));
    }
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  roots.containerMarkers = {"/run/.containerenv", "/.dockerenv", "/run/.toolboxenv"};
  roots.sharedFolders = {"/opt",
                         "/usr/lib",
                         "/usr/lib64",
                         "/usr/libexec",
                         "/usr/share",
                         "/usr/share/games",
                         "/usr/lib/games",
                         "/usr/local/lib",
                         "/usr/local/share",
                         "/usr/local/games",
                         "/usr/lib/x86_64-linux-gnu",
                         "/usr/lib/aarch64-linux-gnu",
                         places.home + "/.local/lib",
                         places.home + "/.local/opt",
                         places.home + "/opt",
                         places.home + "/Applications"};
  return roots;
}

std::string programFile(const FileReader& reader, const LinuxAppRoots& roots, const std::string& name) {
  if (name.contains('/')) {
    return name.starts_with('/') && isFile(reader, name) ? reader.realPath(name).value_or("") : std::string();
  }
  for (const std::string& folder : roots.programFolders) {
    const std::string path = appendingPathComponent(folder, name);
    if (!name.empty() && isFile(reader, path)) {
      return reader.realPath(path).value_or("");
    }
  }
  return {};
}

std::string ownFolder(const LinuxAppRoots& roots, std::string_view program) {
  std::string_view folder = parentPath(program);
  while (std::ranges::find(programParts, lastPathComponent(folder)) != programParts.end()) {
    folder = parentPath(folder);
  }
  const auto holds = [&](const std::string& shared) { return isSameOrInside(folder, shared); };
  const bool isOwn = !program.empty() && !isInterpreter(lastPathComponent(program)) &&
                     std::ranges::any_of(roots.sharedFolders, holds) &&
                     std::ranges::find(roots.sharedFolders, folder) == roots.sharedFolders.end();
  return isOwn ? std::string(folder) : std::string();
}

}  // namespace lumenary
