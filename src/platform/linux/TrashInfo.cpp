#include "platform/linux/TrashInfo.h"

#include <algorithm>
#include <array>
#include <charconv>
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

std::optional<int> numberIn(std::string_view digits) {
  unsigned short number = 0;  // unsigned: no sign is read
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return error == std::errc() && end == digits.data() + digits.size() ? std::optional<int>(number) : std::nullopt;
}

/// Reads what `localTime` writes.
std::optional<Date> instantOf(std::string_view text) {
  constexpr std::string_view form = "dddd-dd-ddTdd:dd:dd";
  if (text.size() != form.size()) {
    return std::nullopt;
  }
  std::array<int, 6> numbers{};
  std::size_t field = 0;
  for (std::size_t start = 0; start < form.size(); ++field) {
    const std::size_t end = std::min(form.find_first_not_of('d', start), form.size());
    const auto number = numberIn(text.substr(start, end - start));
    if (!number || (end < form.size() && text[end] != form[end])) {
      return std::nullopt;
    }
    numbers.at(field) = *number;
    start = end + 1;
  }
  const auto [year, month, day, hour, minute, second] = numbers;
  const auto calendarDay = std::chrono::year(year) / month / day;
  if (!calendarDay.ok() || hour > 23 || minute > 59 || second > 60) {
    return std::nullopt;
  }
  std::tm parts{};
  parts.tm_year = year - 1900;
  parts.tm_mon = month - 1;
  parts.tm_mday = day;
  parts.tm_hour = hour;
  parts.tm_min = minute;
  parts.tm_sec = second;
  parts.tm_isdst = -1;
  return Date(std::chrono::seconds(std::mktime(&parts)));
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
  constexpr std::string_view dateKey = "DeletionDate=";
  std::optional<std::string_view> path;
  std::optional<std::string_view> date;
  while (!text.empty()) {
    const std::string_view line = takeLine(text);
    if (!path && line.starts_with(pathKey)) {
      path = line.substr(pathKey.size());
    } else if (!date && line.starts_with(dateKey)) {
      date = line.substr(dateKey.size());
    }
  }
  auto decoded = percentDecoded(path.value_or(""));
  if (!decoded || decoded->empty() || climbs(*decoded)) {
    return std::nullopt;
  }
  return TrashInfo{.path = *std::move(decoded), .deleted = instantOf(date.value_or(""))};
}

std::optional<std::string> originOf(const TrashInfo& info, std::string_view top) {
  const bool isAbsolute = info.path.starts_with('/');
  if (isAbsolute != top.empty()) {
    return std::nullopt;
  }
  return standardise(isAbsolute ? info.path : appendingPathComponent(top, info.path));
}

}  // namespace lumenary
