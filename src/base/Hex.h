#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lumenary {

/// Appends a byte as two upper-case hexadecimal digits.
inline void appendHex(std::string& out, std::uint8_t byte) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  out += digits[byte >> 4];
  out += digits[byte & 0xF];
}

/// The value of a hexadecimal digit of either case; 16 or more for any other character.
constexpr std::uint8_t hexDigit(char digit) {
  const auto at = [digit](char first) {
    return static_cast<unsigned>(static_cast<unsigned char>(digit)) - static_cast<unsigned>(first);
  };
  if (at('0') < 10) {
    return static_cast<std::uint8_t>(at('0'));
  }
  const unsigned letter = std::min(at('A'), at('a'));
  return static_cast<std::uint8_t>(letter < 6 ? 10 + letter : 16);
}

/// The byte behind exactly two hexadecimal digits of either case.
constexpr std::optional<std::uint8_t> hexByte(std::string_view digits) {
  if (digits.size() != 2) {
    return std::nullopt;
  }
  const std::uint8_t high = hexDigit(digits[0]);
  const std::uint8_t low = hexDigit(digits[1]);
  return high < 16 && low < 16 ? std::optional(static_cast<std::uint8_t>(high << 4 | low)) : std::nullopt;
}

}  // namespace lumenary
