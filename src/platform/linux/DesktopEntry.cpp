#include "platform/linux/DesktopEntry.h"

#include <algorithm>

namespace lumenary {
namespace {

constexpr std::string_view blanks = " \t\r";

std::string_view withoutBlanks(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
  return text.substr(0, text.find_last_not_of(blanks) + 1);
}

char escaped(char byte) {
  switch (byte) {
    case 's':
      return ' ';
    case 'n':
      return '\n';
    case 't':
      return '\t';
    case 'r':
      return '\r';
    case '\\':
      return '\\';
    default:
      return '\0';
  }
}

}  // namespace

std::map<std::string, std::string, std::less<>> parseDesktopEntry(std::string_view text) {
  std::map<std::string, std::string, std::less<>> keys;
  for (bool isInGroup = false; !text.empty();) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = withoutBlanks(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.starts_with('[')) {
      isInGroup = line == "[Desktop Entry]";
      continue;
    }
    const std::size_t equals = line.find('=');
    if (!isInGroup || line.starts_with('#') || equals == std::string_view::npos) {
      continue;
    }
    keys.emplace(withoutBlanks(line.substr(0, equals)), withoutBlanks(line.substr(equals + 1)));
  }
  return keys;
}

std::string desktopEntryText(std::string_view value) {
  std::string text;
  for (std::size_t at = 0; at < value.size(); ++at) {
    const char meaning = value[at] == '\\' && at + 1 < value.size() ? escaped(value[at + 1]) : '\0';
    if (meaning != '\0') {
      text += meaning;
      ++at;
    } else {
      text += value[at];
    }
  }
  return text;
}

}  // namespace lumenary
