#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace lumenary {

/// The rooms, in the order of the sidebar.
enum class AppDestination : std::uint8_t { home, storage, cleanup, apps, memory, developer };

inline constexpr std::array<std::string_view, 6> destinationTitles = {"Overview", "Storage", "Clean",
                                                                      "Apps",     "Memory",  "Ports & Projects"};

/// By which the settings know them.
inline constexpr std::array<std::string_view, 6> destinationNames = {"home", "storage", "cleanup",
                                                                     "apps", "memory",  "developer"};

constexpr std::string_view titleOf(AppDestination destination) {
  return destinationTitles[static_cast<std::size_t>(destination)];
}
constexpr std::string_view rawValue(AppDestination destination) {
  return destinationNames[static_cast<std::size_t>(destination)];
}
/// The overview for a name that isn't known.
constexpr AppDestination destinationOf(std::string_view rawValue) {
  const auto found = std::find(destinationNames.begin(), destinationNames.end(), rawValue);
  return found == destinationNames.end() ? AppDestination::home
                                         : static_cast<AppDestination>(found - destinationNames.begin());
}

}  // namespace lumenary
