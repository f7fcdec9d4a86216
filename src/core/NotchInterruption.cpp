#include "core/NotchInterruption.h"

#include <chrono>
#include <optional>
#include <string>

namespace lumenary::NotchInterruption {
namespace {

const std::string lastInterruptionKey = "notchLastInterruption";
constexpr auto quietTime = std::chrono::seconds(86'400);

/// None where none is told, and where the text is damaged or of a clock that was wrong.
std::optional<Date> lastInterruption(const Defaults& defaults, Date now) {
  const auto text = defaults.string(lastInterruptionKey).value_or(std::nullopt);
  const auto date = text ? parseISO8601(*text) : std::nullopt;
  return date && *date - now < quietTime ? date : std::nullopt;
}

}  // namespace

bool claim(Defaults& defaults, const Session& session, Date now) {
  if (session.isFullScreenAppInFront() || session.isMicrophoneInUse()) {
    return false;
  }
  const auto last = lastInterruption(defaults, now);
  if (last && now - *last < quietTime) {
    return false;
  }
  return defaults.setString(lastInterruptionKey, iso8601(now)).has_value();
}

}  // namespace lumenary::NotchInterruption
