#include "base/XmlText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>

namespace lumenary {
namespace {

struct Entity {
  std::string_view name;
  char character;
};

constexpr std::array entities{Entity{.name = "lt", .character = '<'}, Entity{.name = "gt", .character = '>'},
                              Entity{.name = "amp", .character = '&'}, Entity{.name = "quot", .character = '"'},
                              Entity{.name = "apos", .character = '\''}};

void appendCharacter(std::string& text, std::uint32_t character) {
  const auto byte = [&](std::uint32_t value) { text += static_cast<char>(value); };
  const auto further = [&](std::uint32_t shift) { byte(0x80U | ((character >> shift) & 0x3FU)); };
  if (character < 0x80) {
    byte(character);
  } else if (character < 0x800) {
    byte(0xC0U | (character >> 6U));
    further(0);
  } else if (character < 0x10000) {
    byte(0xE0U | (character >> 12U));
    further(6);
    further(0);
  } else {
    byte(0xF0U | (character >> 18U));
    further(12);
    further(6);
    further(0);
  }
}

/// "#65" or "#x41".
std::optional<std::uint32_t> characterReference(std::string_view name) {
  if (!name.starts_with('#')) {
    return std::nullopt;
  }
  name.remove_prefix(1);
  const bool isHex = name.starts_with('x');
  name.remove_prefix(isHex ? 1 : 0);
  std::uint32_t character = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), character, isHex ? 16 : 10);
  const bool isNumber = error == std::errc() && end == name.data() + name.size();
  const bool isAllowed =
      isNumber && character != 0 && character <= 0x10FFFF && (character < 0xD800 || character > 0xDFFF);
  return isAllowed ? std::optional(character) : std::nullopt;
}

}  // namespace

bool takeXmlReference(std::string_view& rest, std::string& text) {
  const std::size_t end = rest.substr(0, 12).find(';');
  if (!rest.starts_with('&') || end == std::string_view::npos) {
    return false;
  }
  const std::string_view name = rest.substr(1, end - 1);
  rest.remove_prefix(end + 1);
  if (const auto* const known = std::ranges::find(entities, name, &Entity::name); known != entities.end()) {
    text += known->character;
    return true;
  }
  const auto character = characterReference(name);
  if (character) {
    appendCharacter(text, *character);
  }
  return character.has_value();
}

std::optional<std::string> xmlText(std::string_view escaped) {
  std::string text;
  while (!escaped.empty()) {
    const std::size_t plain = std::min(escaped.find('&'), escaped.size());
    text += escaped.substr(0, plain);
    escaped.remove_prefix(plain);
    if (!escaped.empty() && !takeXmlReference(escaped, text)) {
      return std::nullopt;
    }
  }
  return text;
}

}  // namespace lumenary
