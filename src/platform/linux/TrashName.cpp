#include "platform/linux/TrashName.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <random>

#include "base/Text.h"

namespace lumenary {
namespace {

constexpr unsigned numberedAttempts = 9;
constexpr std::size_t longestExtension = 16;

/// Where the extension with its dot starts; the whole length where there is none. A leading dot makes a hidden name, no
/// extension.
std::size_t extensionStart(std::string_view name) {
  const auto dot = name.rfind('.');
  const bool isExtension = dot != std::string_view::npos && dot > 0 && name.size() - dot <= longestExtension;
  return isExtension ? dot : name.size();
}

/// At most `limit` bytes of `text`, no character cut in two; bytes that aren't UTF-8 count as characters.
std::string_view cutToCharacters(std::string_view text, std::size_t limit) {
  std::size_t length = 0;
  while (length < text.size()) {
    const std::size_t step = std::max<std::size_t>(1, utf8SequenceLength(text.substr(length)));
    if (length + step > limit) {
      break;
    }
    length += step;
  }
  return text.substr(0, length);
}

std::string marker(unsigned attempt) {
  if (attempt == 0) {
    return "";
  }
  if (attempt < numberedAttempts) {
    return "." + std::to_string(attempt + 1);
  }
  std::array<char, 8> digits{};
  const auto end = std::to_chars(digits.begin(), digits.end(), std::random_device{}(), 16).ptr;
  const auto length = static_cast<std::size_t>(end - digits.begin());
  return "." + std::string(digits.size() - length, '0') + std::string(digits.data(), length);
}

}  // namespace

std::string trashName(std::string_view itemName, unsigned attempt, std::size_t limit) {
  const std::size_t start = extensionStart(itemName);
  const std::string suffix = marker(attempt) + std::string(itemName.substr(start));
  const std::size_t room = limit > suffix.size() ? limit - suffix.size() : 1;
  return std::string(cutToCharacters(itemName.substr(0, start), room)) + suffix;
}

}  // namespace lumenary
