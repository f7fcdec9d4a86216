#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <utility>

#include "platform/linux/UnitFile.h"

namespace lumenary {
namespace {

constexpr std::string_view blanks = " \t\n\r";
constexpr std::string_view prefixes = "@-:+!|";
constexpr double longestSpan = 1e11;  ///< seconds
constexpr std::size_t longestUnitName = 255;

bool isLetterOrDigit(char byte) {
  return (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
}

/// What the escape behind a backslash stands for, cut off the text; none for one that isn't known.
std::optional<char> takeEscape(std::string_view& text) {
  constexpr std::array<std::pair<char, char>, 7> simple = {
      {{'s', ' '}, {'t', '\t'}, {'n', '\n'}, {'r', '\r'}, {'\\', '\\'}, {'"', '"'}, {'\'', '\''}}};
  if (text.empty()) {
    return std::nullopt;
  }
  const auto found = std::ranges::find(simple, text.front(), &std::pair<char, char>::first);
  if (found != simple.end()) {
    text.remove_prefix(1);
    return found->second;
  }
  unsigned code = 0;
  if (text.size() < 3 || text.front() != 'x') {
    return std::nullopt;
  }
  const auto [end, error] = std::from_chars(text.data() + 1, text.data() + 3, code, 16);
  if (error != std::errc() || end != text.data() + 3 || code == 0) {
    return std::nullopt;
  }
  text.remove_prefix(3);
  return static_cast<char>(code);
}

/// The first word, quotes and escapes taken away.
std::string firstWord(std::string_view text) {
  std::string word;
  for (char quote = '\0'; !text.empty();) {
    const char byte = text.front();
    text.remove_prefix(1);
    if (byte == '\\') {
      word += takeEscape(text).value_or(byte);
    } else if (byte == quote) {
      quote = '\0';
    } else if (quote == '\0' && (byte == '"' || byte == '\'')) {
      quote = byte;
    } else if (quote == '\0' && blanks.contains(byte)) {
      break;
    } else {
      word += byte;
    }
  }
  return word;
}

const std::string* meaningOf(char specifier, const UnitSpecifiers& specifiers) {
  static const std::string percent = "%";
  const std::string* meaning = nullptr;
  switch (specifier) {
    case 'h':
      meaning = &specifiers.home;
      break;
    case 'u':
      meaning = &specifiers.user;
      break;
    case 'i':
    case 'I':
      meaning = &specifiers.instance;
      break;
    case '%':
      meaning = &percent;
      break;
    default:
      return nullptr;
  }
  return meaning->empty() ? nullptr : meaning;
}

/// Seconds of a unit of time; none for a word that isn't one.
std::optional<double> secondsOf(std::string_view unit) {
  struct Unit {
    double seconds = 0;
    std::array<std::string_view, 5> words;
  };
  static constexpr std::array<Unit, 9> units = {{{1e-6, {"usec", "us", "µs"}},
                                                 {1e-3, {"msec", "ms"}},
                                                 {1, {"", "seconds", "second", "sec", "s"}},
                                                 {60, {"minutes", "minute", "min", "m"}},
                                                 {3600, {"hours", "hour", "hr", "h"}},
                                                 {86'400, {"days", "day", "d"}},
                                                 {7 * 86'400, {"weeks", "week", "w"}},
                                                 {2'629'800, {"months", "month", "M"}},
                                                 {31'557'600, {"years", "year", "y"}}}};
  if (unit.empty()) {
    return 1;
  }
  for (const Unit& each : units) {
    if (std::ranges::find(each.words, unit) != each.words.end()) {
      return each.seconds;
    }
  }
  return std::nullopt;
}

}  // namespace

UnitText resolvedUnitText(std::string_view text, const UnitSpecifiers& specifiers) {
  UnitText resolved{.text = {}, .isResolved = true};
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool isSpecifier = text[at] == '%' && at + 1 < text.size();
    const std::string* const meaning = isSpecifier ? meaningOf(text[at + 1], specifiers) : nullptr;
    if (meaning != nullptr) {
      resolved.text += *meaning;
      ++at;
    } else {
      resolved.text += text[at];
      resolved.isResolved = resolved.isResolved && !isSpecifier;
    }
  }
  return resolved;
}

std::optional<UnitText> unitProgram(std::string_view commandLine, const UnitSpecifiers& specifiers) {
  commandLine.remove_prefix(std::min(commandLine.find_first_not_of(blanks), commandLine.size()));
  commandLine.remove_prefix(std::min(commandLine.find_first_not_of(prefixes), commandLine.size()));
  const std::string word = firstWord(commandLine);
  return word.empty() ? std::nullopt : std::optional(resolvedUnitText(word, specifiers));
}

std::optional<std::int64_t> unitTimeSpan(std::string_view text) {
  double total = 0;
  bool isEmpty = true;
  for (;;) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    if (text.empty()) {
      break;
    }
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
    if (error != std::errc() || !std::isfinite(number) || number < 0) {
      return std::nullopt;
    }
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    const std::size_t length = std::min(text.find_first_of(" \t\n\r0123456789."), text.size());
    const auto seconds = secondsOf(text.substr(0, length));
    if (!seconds) {
      return std::nullopt;
    }
    text.remove_prefix(length);
    total += number * *seconds;
    isEmpty = false;
  }
  return isEmpty || total > longestSpan ? std::nullopt : std::optional(static_cast<std::int64_t>(total));
}

bool isUnitName(std::string_view name) {
  const auto fits = [](char byte) { return isLetterOrDigit(byte) || std::string_view(":-_.\\@").contains(byte); };
  return name.size() <= longestUnitName && name.contains('.') && std::ranges::all_of(name, fits);
}

std::string unitNameEscaped(std::string_view text) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string name;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char byte = text[at];
    const bool isKept = isLetterOrDigit(byte) || byte == ':' || byte == '_' || (byte == '.' && at > 0);
    if (isKept) {
      name += byte;
      continue;
    }
    const auto code = static_cast<unsigned char>(byte);
    name += byte == '/' ? "-" : std::string("\\x") + digits[code / 16] + digits[code % 16];
  }
  return name;
}

}  // namespace lumenary
