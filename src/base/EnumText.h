#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace lumenary {

/// The enumerator whose value is the position of `text` in `texts`; no value for a text that isn't there.
template <class Enum, std::size_t count>
constexpr std::optional<Enum> enumOf(const std::array<std::string_view, count>& texts, std::string_view text) {
  const auto found = std::ranges::find(texts, text);
  return found == texts.end() ? std::nullopt : std::optional(static_cast<Enum>(found - texts.begin()));
}

}  // namespace lumenary
