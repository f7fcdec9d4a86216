#include "core/RoomRules.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <limits>

#include "base/AppFormatting.h"
#include "base/CheckedSum.h"

namespace lumenary::RoomRules {
namespace {

constexpr double almostFull = 0.9;
constexpr double ratherFull = 0.85;
constexpr std::chrono::seconds week{604'800};
constexpr std::int64_t worthALook = 524'288'000;

std::string counted(std::int64_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string bytesText(std::uint64_t bytes) {
  constexpr auto most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  return AppFormatting::bytes(static_cast<std::int64_t>(std::min(bytes, most)));
}

}  // namespace

RoomStatus storage(const RoomInputs& inputs) {
  RoomStatus status;
  if (inputs.availableBytes) {
    status.value = AppFormatting::bytes(*inputs.availableBytes) + " free";
  }
  const bool isAlmostFull = inputs.usedFraction.value_or(0) > almostFull;
  if (!inputs.scannedAt) {
    status.level = isAlmostFull ? RoomLevel::action : RoomLevel::attention;
    status.headline = "Not scanned yet. Scan once to see what's taking space.";
    status.actionTitle = "Scan Mac";
  } else if (isAlmostFull) {
    status.level = RoomLevel::action;
    status.headline = "Disk is almost full. See what's biggest.";
    status.badge = "Full";
    status.actionTitle = "Find Big Files";
  } else if (inputs.now - *inputs.scannedAt > week) {
    status.headline = "Last scanned over a week ago.";
    status.actionTitle = "Scan Again";
  } else {
    status.headline = "Nothing urgent. Plenty to browse.";
  }
  return status;
}

RoomStatus cleanup(const RoomInputs& inputs) {
  const std::int64_t total = checkedSum(inputs.tidyBytes, inputs.buildBytes);
  if (total < 1) {
    return {.headline = "Nothing to clear right now."};
  }
  const std::string bytes = AppFormatting::bytes(total);
  RoomStatus status{.value = bytes,
                    .headline = bytes + " of caches, copies, and build files you can clear.",
                    .actionTitle = "See " + bytes};
  if (total >= worthALook) {
    status.badge = bytes;
    status.level = inputs.usedFraction.value_or(0) > ratherFull ? RoomLevel::action : RoomLevel::attention;
  }
  return status;
}

RoomStatus apps(const RoomInputs& inputs) {
  const auto standsOut = [](RoomLevel level, const std::string& figure, std::string headline, std::string action) {
    return RoomStatus{.level = level,
                      .value = figure,
                      .headline = std::move(headline),
                      .badge = figure,
                      .actionTitle = std::move(action)};
  };
  const std::string leftoverText = AppFormatting::bytes(inputs.leftoverBytes);
  if (inputs.removedAppName && inputs.leftoverBytes >= 1) {
    return standsOut(RoomLevel::action, leftoverText, *inputs.removedAppName + " was removed but left its data behind.",
                     "See Leftovers");
  }
  if (!inputs.appSafeBytes) {
    return {.headline = "Open to measure apps and the data they keep."};
  }
  if (const std::int64_t broken = inputs.brokenBackgroundItems; broken >= 1) {
    return {.level = RoomLevel::attention,
            .value = std::to_string(broken),
            .headline = counted(broken, "background item") + " from removed apps still try to run.",
            .badge = std::to_string(broken) + " broken",
            .actionTitle = "See Background Items"};
  }
  const std::string safeText = AppFormatting::bytes(*inputs.appSafeBytes);
  if (*inputs.appSafeBytes >= worthALook) {
    return standsOut(RoomLevel::attention, safeText, "App caches and logs that rebuild on their own.",
                     "See App Caches");
  }
  if (inputs.leftoverBytes >= worthALook) {
    return standsOut(RoomLevel::attention, leftoverText,
                     counted(inputs.leftoverCount, "removed app") + " left data behind.", "See Leftovers");
  }
  return {.value = safeText, .headline = "Apps are tidy."};
}

RoomStatus memory(const RoomInputs& inputs) {
  RoomStatus status;
  if (inputs.memoryFraction) {
    constexpr double percent = 100;
    status.value = std::to_string(std::llround(*inputs.memoryFraction * percent)) + "%";
  }
  const std::string top =
      inputs.topMemoryApp ? *inputs.topMemoryApp + " uses the most (" + bytesText(inputs.topMemoryBytes) + ")." : "";
  switch (inputs.memoryPressure.value_or(MemoryPressureLevel::normal)) {
    case MemoryPressureLevel::critical:
      status.level = RoomLevel::action;
      status.headline = "Your Mac is short on memory. " + top;
      status.badge = "Low";
      status.actionTitle = "Free Up Memory";
      break;
    case MemoryPressureLevel::elevated:
      status.level = RoomLevel::attention;
      status.headline = "Memory is getting tight. " + top;
      status.badge = "Tight";
      status.actionTitle = "See What's Using It";
      break;
    case MemoryPressureLevel::normal:
      status.headline = top.empty() ? "Enough memory for what's open." : top;
      break;
  }
  return status;
}

RoomStatus developer(const RoomInputs& inputs) {
  RoomStatus status{.value = counted(inputs.portCount, "port"), .headline = "No local servers running."};
  if (inputs.portCount > 0) {
    status.headline = "Local servers listening, across " + counted(inputs.projectCount, "project") + ".";
    status.badge = std::to_string(inputs.portCount);
  }
  return status;
}

RoomStatus home(const RoomInputs& inputs) {
  const std::array rooms = {storage(inputs), cleanup(inputs), apps(inputs), memory(inputs), developer(inputs)};
  const RoomStatus& worst = *std::ranges::max_element(rooms, {}, &RoomStatus::level);  // the first of equal ones
  if (worst.level == RoomLevel::calm) {
    return {.value = "All clear", .headline = "Every room is in order."};
  }
  const auto isAboveCalm = [](const RoomStatus& room) { return room.level != RoomLevel::calm; };
  return {.level = worst.level,
          .value = std::to_string(std::ranges::count_if(rooms, isAboveCalm)) + " to look at",
          .headline = worst.headline,
          .actionTitle = worst.actionTitle};
}

RoomStatus status(AppDestination destination, const RoomInputs& inputs) {
  switch (destination) {
    case AppDestination::home:
      return home(inputs);
    case AppDestination::storage:
      return storage(inputs);
    case AppDestination::cleanup:
      return cleanup(inputs);
    case AppDestination::apps:
      return apps(inputs);
    case AppDestination::memory:
      return memory(inputs);
    case AppDestination::developer:
      return developer(inputs);
  }
  return {};
}

}  // namespace lumenary::RoomRules
