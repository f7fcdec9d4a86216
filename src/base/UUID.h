#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lumenary {

/// A random identity (RFC 4122, version 4). Default-constructed it is all zeros.
struct UUID {
  std::array<std::uint8_t, 16> bytes{};

  static UUID random();
  /// The canonical text, in either case; no value for anything else.
  static std::optional<UUID> parse(std::string_view text);
  /// The canonical text in upper case.
  std::string text() const;

  auto operator<=>(const UUID&) const = default;
};

}  // namespace lumenary
