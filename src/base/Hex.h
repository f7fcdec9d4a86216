#pragma once

#include <array>
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

/// The value of each hexadecimal digit of either case by its character; 16 for any other.
inline constexpr auto hexValues = [] {
  std::array<std::uint8_t, 256> values{};
  values.fill(16);
  for (std::uint8_t value = 0; value < 16; ++value) {
    values[static_cast<std::uint8_t>("0123456789ABCDEF"[value])] = value;
    values[static_cast<std::uint8_t>("0123456789abcdef"[value])] = value;
  }
  return values;
}();

/// The byte behind exactly two hexadecimal digits of either case.
constexpr std::optional<std::uint8_t> hexByte(std::string_view digits) {
  if (digits.size() != 2) {
    return std::nullopt;
  }
  const std::uint8_t high = hexValues[static_cast<std::uint8_t>(digits[0])];
  const std::uint8_t low = hexValues[static_cast<std::uint8_t>(digits[1])];
  return high < 16 && low < 16 ? std::optional(static_cast<std::uint8_t>(high << 4 | low)) : std::nullopt;
}

}  // namespace lumenary
