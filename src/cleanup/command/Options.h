#pragma once

#include <cstdint>
#include <expected>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace lumenary::CleanupCommand {

struct Options {
  std::optional<std::string> root;
  std::optional<std::int64_t> days;  ///< above 0
  bool json = false;
  bool trash = false;

  bool operator==(const Options&) const = default;
};

struct UsageError {
  std::string message;  ///< holds what a person typed, byte for byte

  bool operator==(const UsageError&) const = default;
};

inline constexpr std::string_view usage =
    "Usage: Lumenary cleanup [--root PATH] [--days N] [--json] [--trash]\n"
    "\n"
    "  --root PATH   Folder to scan. Defaults to the code folder chosen in the app.\n"
    "  --days N      Only folders whose project has had no changes for N days.\n"
    "  --json        Print JSON instead of a table.\n"
    "  --trash       Move what's listed to the Trash. Needs --days. Without it, nothing moves.\n"
    "\n"
    "Moved folders can be put back from History in the Cleanup room.\n";
static_assert(usage.size() == 424);

/// Reads the arguments from the first to the last; the first one that is wrong is told. Of a repeated option the last
/// counts.
std::expected<Options, UsageError> parse(std::span<const std::string> arguments);

}  // namespace lumenary::CleanupCommand
