#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace lumenary {

/// The rooms, in the order of the sidebar.
enum class AppDestination : std::uint8_t { home, storage, cleanup, apps, memory, developer };

inline constexpr std::array<std::string_view, 6> destinationTitles = {"Overview", "Storage", "Clean",
                                                                      "Apps",     "Memory",  "Ports & Projects"};

constexpr std::string_view titleOf(AppDestination destination) {
  return destinationTitles[static_cast<std::size_t>(destination)];
}

}  // namespace lumenary
