#include "cleanup/command/Options.h"

#include <charconv>
#include <system_error>

namespace lumenary::CleanupCommand {
namespace {

std::unexpected<UsageError> wrong(std::string message) { return std::unexpected(UsageError{std::move(message)}); }

/// Decimal digits behind one sign at most, the whole text, and a number above 0.
std::optional<std::int64_t> parseDays(std::string_view text) {
  if (text.starts_with('+')) {
    text.remove_prefix(1);
  }
  std::int64_t days = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), days);
  if (error != std::errc() || end != text.data() + text.size() || days <= 0) {
    return {};
  }
  return days;
}

}  // namespace

std::expected<Options, UsageError> parse(std::span<const std::string> arguments) {
  Options options;
  for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
    if (*argument == "--json") {
      options.json = true;
    } else if (*argument == "--trash") {
      options.trash = true;
    } else if (*argument == "--root") {
      if (++argument == arguments.end()) {
        return wrong("--root needs a path.");
      }
      options.root = *argument;
    } else if (*argument == "--days") {
      options.days = ++argument == arguments.end() ? std::nullopt : parseDays(*argument);
      if (!options.days) {
        return wrong("--days needs a whole number above 0.");
      }
    } else {
      return wrong("Unknown option: " + *argument);
    }
  }
  if (options.trash && !options.days) {
    return wrong("--trash needs --days.");
  }
  return options;
}

}  // namespace lumenary::CleanupCommand
