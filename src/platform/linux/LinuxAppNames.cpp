#include "platform/linux/LinuxAppNames.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

#include "base/Path.h"
#include "base/Text.h"
#include "platform/linux/DesktopEntry.h"

namespace lumenary {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view entryExtension = ".desktop";
constexpr std::size_t byteLimit = std::size_t{256} * 1024;

constexpr std::string_view standardDataFolders = "/usr/local/share:/usr/share";
constexpr std::array<std::string_view, 2> storeFolders = {"/var/lib/flatpak/exports/share", "/var/lib/snapd/desktop"};

/// The name of an app that is meant to be seen.
std::optional<std::string> readName(const fs::path& path) {
  std::error_code error;
  if (!fs::is_regular_file(path, error)) {
    return std::nullopt;
  }
  std::string text(byteLimit, '\0');
  std::ifstream file(path, std::ios::binary);
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(std::max<std::streamsize>(file.gcount(), 0)));
  const auto keys = parseDesktopEntry(text);
  const auto name = keys.find("Name");
  return name == keys.end() || name->second.empty() ? std::nullopt
                                                    : std::optional(displayText(desktopEntryText(name->second)));
}

}  // namespace

std::vector<std::string> applicationFolders(const Environment& environment, const Places& places) {
  std::vector<std::string> folders = {places.dataHome, places.dataHome + "/flatpak/exports/share"};
  const char* const variable = environment("XDG_DATA_DIRS");
  std::string_view rest = variable == nullptr || *variable == '\0' ? standardDataFolders : variable;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find(':'), rest.size());
    folders.push_back(standardise(rest.substr(0, end)));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  folders.insert(folders.end(), storeFolders.begin(), storeFolders.end());
  for (std::string& folder : folders) {
    folder += "/applications";
  }
  return folders;
}

std::optional<std::string> LinuxAppNames::nameOf(std::string_view identifier) const {
  const std::lock_guard guard(lock_);
  if (names_.empty()) {
    // Even where there are no apps, once is enough.
    names_.emplace("", std::nullopt);
    for (const std::string& folder : folders_) {
      std::error_code error;
      for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
        const std::string name = at->path().filename().string();
        if (name.ends_with(entryExtension)) {
          const std::string known = loweredASCII(name.substr(0, name.size() - entryExtension.size()));
          if (!names_.contains(known)) {
            names_.emplace(known, readName(at->path()));
          }
        }
      }
    }
  }
  const auto found = names_.find(loweredASCII(identifier));
  return found == names_.end() ? std::nullopt : found->second;
}

}  // namespace lumenary
