#include "platform/linux/TrashInfo.h"

#include <array>
#include <ctime>

#include "base/FileURL.h"
#include "base/Path.h"

namespace lumenary {
namespace {

constexpr std::string_view header = "[Trash Info]";

std::string localTime(Date date) {
  const std::time_t seconds = std::chrono::floor<std::chrono::seconds>(date).time_since_epoch().count();
  std::tm parts{};
  if (localtime_r(&seconds, &parts) == nullptr) {
    return "1970-01-01T00:00:00";
  }
  std::array<char, 40> text{};
  return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &parts)};
}

bool climbs(std::string_view path) {
  while (!path.empty()) {
    const auto slash = path.find('/');
    if (path.substr(0, slash) == "..") {
      return true;
    }
    path = slash == std::string_view::npos ? std::string_view() : path.substr(slash + 1);
  }
  return false;
}

std::string_view takeLine(std::string_view& text) {
  const auto end = text.find('\n');
  std::string_view line = text.substr(0, end);
  text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
  if (line.ends_with('\r')) {
    line.remove_suffix(1);
  }
  return line;
}

}  // namespace

std::string composeTrashInfo(std::string_view path, Date date) {
  return std::string(header) + "\nPath=" + percentEncoded(path) + "\nDeletionDate=" + localTime(date) + "\n";
}

std::optional<TrashInfo> parseTrashInfo(std::string_view text) {
  if (takeLine(text) != header) {
    return std::nullopt;
  }
  constexpr std::string_view pathKey = "Path=";
  std::optional<std::string_view> path;
  while (!text.empty()) {
    const std::string_view line = takeLine(text);
    if (!path && line.starts_with(pathKey)) {
      path = line.substr(pathKey.size());
    }
  }
  auto decoded = percentDecoded(path.value_or(""));
  if (!decoded || decoded->empty() || climbs(*decoded)) {
    return std::nullopt;
  }
  return TrashInfo{.path = *std::move(decoded)};
}

std::optional<std::string> originOf(const TrashInfo& info, std::string_view top) {
  const bool isAbsolute = info.path.starts_with('/');
  if (isAbsolute != top.empty()) {
    return std::nullopt;
  }
  return standardise(isAbsolute ? info.path : appendingPathComponent(top, info.path));
}

}  // namespace lumenary
