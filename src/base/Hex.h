#pragma once

#include <charconv>
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

/// The byte behind exactly two hexadecimal digits of either case.
inline std::optional<std::uint8_t> hexByte(std::string_view digits) {
  std::uint8_t byte = 0;
  const auto [stop, error] = std::from_chars(digits.begin(), digits.end(), byte, 16);
  return digits.size() == 2 && error == std::errc() && stop == digits.end() ? std::optional(byte) : std::nullopt;
}

}  // namespace lumenary
