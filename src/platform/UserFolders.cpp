#include "platform/UserFolders.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>

#include "base/Path.h"

namespace lumenary {
namespace {

constexpr std::string_view fileName = "user-dirs.dirs";
constexpr std::size_t byteLimit = std::size_t{64} * 1024;

constexpr std::string_view keyBegin = "XDG_";
constexpr std::string_view keyEnd = "_DIR";
constexpr std::string_view homeVariable = "$HOME/";

/// The text between the quotes; a backslash stands in front of a quote, a dollar sign or another one.
std::optional<std::string> unquoted(std::string_view value) {
  if (value.size() < 2 || value.front() != '"') {
    return std::nullopt;
  }
  std::string text;
  for (std::size_t at = 1; at < value.size(); ++at) {
    if (value[at] == '"') {
      return text;
    }
    if (value[at] == '\\' && at + 1 < value.size()) {
      ++at;
    }
    text += value[at];
  }
  return std::nullopt;
}

std::string pathOf(std::string_view text, const std::string& home) {
  if (text.starts_with(homeVariable)) {
    return standardise(home + "/" + std::string(text.substr(homeVariable.size())));
  }
  return text.starts_with('/') ? standardise(text) : std::string();
}

}  // namespace

Places withUserFolders(Places places, std::string_view text) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    const std::size_t equals = line.find('=');
    const std::string_view key = line.substr(0, equals);
    if (equals == std::string_view::npos || !key.starts_with(keyBegin) || !key.ends_with(keyEnd)) {
      continue;
    }
    const auto value = unquoted(line.substr(equals + 1));
    std::string path = value ? pathOf(*value, places.home) : std::string();
    if (path.size() <= places.home.size() || !isSameOrInside(path, places.home)) {
      continue;
    }
    if (key == "XDG_DOWNLOAD_DIR") {
      places.downloads = path;
    }
    places.personalFolders.push_back(std::move(path));
  }
  return places;
}

Places withUserFolders(Places places, DurableFiles& files) {
  const auto text = files.read(appendingPathComponent(places.configHome, fileName), byteLimit);
  return text ? withUserFolders(std::move(places), *text) : places;
}

}  // namespace lumenary
