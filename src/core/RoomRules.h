#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/Date.h"
#include "core/AppDestination.h"
#include "monitoring/SystemSnapshot.h"

namespace lumenary {

/// How much a room needs a look, the least first.
enum class RoomLevel : std::uint8_t { calm, attention, action };

/// What a room says of itself.
struct RoomStatus {
  RoomLevel level = RoomLevel::calm;
  std::string value = "—";                   ///< the one figure of the room; a dash where it isn't known
  std::string headline{};                    ///< one sentence
  std::optional<std::string> badge{};        ///< a short tag, where something stands out
  std::optional<std::string> actionTitle{};  ///< on the room's main button

  bool operator==(const RoomStatus&) const = default;
};

/// All that the rooms go by. Bytes are 0 and options none where nothing is known.
struct RoomInputs {
  Date now{};
  std::optional<double> usedFraction{};  ///< of the selected drive, 0 to 1
  std::optional<std::int64_t> availableBytes{};
  std::int64_t tidyBytes = 0;  ///< what can go with no further thought
  std::optional<Date> scannedAt{};
  std::optional<std::int64_t> appSafeBytes{};
  std::int64_t leftoverBytes = 0;
  std::int64_t leftoverCount = 0;
  std::optional<std::string> removedAppName{};
  std::int64_t brokenBackgroundItems = 0;
  std::optional<MemoryPressureLevel> memoryPressure{};
  std::optional<double> memoryFraction{};
  std::optional<std::string> topMemoryApp{};
  std::uint64_t topMemoryBytes = 0;
  std::int64_t portCount = 0;
  std::int64_t projectCount = 0;
  std::int64_t buildBytes = 0;
  std::int64_t buildItemCount = 0;
};

/// The same inputs always give the same words.
namespace RoomRules {

RoomStatus home(const RoomInputs& inputs);
RoomStatus storage(const RoomInputs& inputs);
RoomStatus cleanup(const RoomInputs& inputs);
RoomStatus apps(const RoomInputs& inputs);
RoomStatus memory(const RoomInputs& inputs);
RoomStatus developer(const RoomInputs& inputs);

RoomStatus status(AppDestination destination, const RoomInputs& inputs);

}  // namespace RoomRules

}  // namespace lumenary
