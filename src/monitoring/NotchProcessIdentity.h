#pragma once

#include <cstdint>
#include <optional>

#include "base/Date.h"
#include "platform/ProcessReader.h"

namespace lumenary {

/// What tells a process from a later one with its number.
struct NotchProcessIdentity {
  std::int32_t pid = 0;
  std::uint32_t uid = 0;
  Date startedAt{};

  bool operator==(const NotchProcessIdentity&) const = default;

  /// None for an id below 2 and for a process that is gone.
  static std::optional<NotchProcessIdentity> capture(const ProcessReader& processes, std::int32_t pid);
};

}  // namespace lumenary
