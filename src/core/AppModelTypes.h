#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/UUID.h"

namespace lumenary {

/// What a person can take back right now.
struct UndoableTrash {
  UUID transactionID;
  std::size_t count = 0;
  std::int64_t bytes = 0;

  bool operator==(const UndoableTrash&) const = default;
};

/// A one-shot request to open a folder in the Storage room.
struct StorageBrowseRequest {
  UUID id;
  std::string target;  ///< its path

  bool operator==(const StorageBrowseRequest&) const = default;
};

/// Which crates the Clean room shows.
enum class CrateFocus : std::uint8_t { all, safe, projects, lookFirst };

/// When the program clears by itself.
enum class AutoTidy : std::uint8_t { off, weekly, lowSpace };

/// "off", "weekly", "lowSpace"; off for anything else.
AutoTidy autoTidyOf(std::string_view rawValue);

/// Under which the settings keep these.
namespace settingsKey {
inline constexpr auto autoTidy = "autoTidy";
inline constexpr auto lastAutoTidy = "lastAutoTidy";
inline constexpr auto codeFolder = "codeFolder";
inline constexpr auto lastRoom = "lastRoom";
}  // namespace settingsKey

}  // namespace lumenary
