#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "platform/SystemError.h"
#include "platform/Trash.h"

namespace lumenary {

/// Why the gate keeps a build folder where it is.
enum class CleanupSafetyError : std::uint8_t { missing, symbolicLink, protectedPath, changedSize };

/// The sentence for the person.
std::string_view description(CleanupSafetyError error);

/// All that can keep a candidate where it is: the gate, a reading of its attributes that failed, or the Trash.
using CleanupRefusal = std::variant<CleanupSafetyError, SystemError, TrashError>;

std::string description(const CleanupRefusal& refusal);

/// False where the attempt left something in the Trash's folders: its journal is to be kept for recovery.
bool isSettled(const CleanupRefusal& refusal);

}  // namespace lumenary
