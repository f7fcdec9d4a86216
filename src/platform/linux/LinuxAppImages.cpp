#include "platform/linux/LinuxAppImages.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "base/Path.h"
#include "base/Text.h"
#include "platform/linux/FolderNames.h"

namespace lumenary {
namespace {

constexpr std::string_view separators = "-_ ";
constexpr auto architectures = std::to_array<std::string_view>(
    {"x86_64", "x86-64", "amd64", "x64", "i386", "i686", "aarch64", "arm64", "armhf", "linux", "linux64"});

bool isDigit(char byte) { return byte >= '0' && byte <= '9'; }

bool isVersion(std::string_view piece) {
  piece.remove_prefix(piece.starts_with('v') || piece.starts_with('V') ? 1 : 0);
  return !piece.empty() && isDigit(piece.front()) && piece.contains('.');
}

/// Cuts names of architectures and systems from the end.
std::string_view withoutArchitecture(std::string_view name) {
  for (bool isCut = true; isCut;) {
    isCut = false;
    const std::string lowered = loweredASCII(name);
    for (const std::string_view architecture : architectures) {
      if (lowered.size() > architecture.size() + 1 && lowered.ends_with(architecture) &&
          (separators.contains(name[name.size() - architecture.size() - 1]) ||
           name[name.size() - architecture.size() - 1] == '.')) {
        name.remove_suffix(architecture.size() + 1);
        isCut = true;
        break;
      }
    }
  }
  return name;
}

}  // namespace

bool isAppImage(std::string_view path) {
  return equalsIgnoringCase(pathExtension(lastPathComponent(path)), "appimage");
}

AppImageName appImageName(std::string_view fileName) {
  const std::string_view extension = pathExtension(fileName);
  const std::size_t cut = extension.empty() ? 0 : extension.size() + 1;
  const std::string_view whole = withoutArchitecture(fileName.substr(0, fileName.size() - cut));
  for (std::size_t at = whole.find_first_of(separators); at != std::string_view::npos;
       at = whole.find_first_of(separators, at + 1)) {
    const std::string_view rest = whole.substr(at + 1);
    const std::string_view piece = rest.substr(0, rest.find_first_of(separators));
    if (at > 0 && isVersion(piece)) {
      const bool hasPrefix = !isDigit(piece.front());
      return {.name = std::string(whole.substr(0, at)), .version = displayText(piece.substr(hasPrefix ? 1 : 0))};
    }
  }
  return {.name = std::string(whole)};
}

std::vector<RegisteredApp> appImages(const FileReader& reader, const LinuxAppRoots& roots) {
  std::vector<RegisteredApp> apps;
  for (const std::string& folder : roots.appImageFolders) {
    for (const auto& [name, kind] : folderNames(reader, folder).value_or(FolderNames())) {
      if (kind != FileKind::file || !isAppImage(name)) {
        continue;
      }
      AppImageName told = appImageName(name);
      const std::string path = appendingPathComponent(folder, name);
      apps.push_back({.path = path,
                      .id = told.name,
                      .name = displayText(told.name),
                      .version = std::move(told.version),
                      .origin = AppOrigin::appImage,
                      .program = path});
    }
  }
  return apps;
}

}  // namespace lumenary
