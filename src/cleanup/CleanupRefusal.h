#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "cleanup/StorageTrashError.h"
#include "platform/SystemError.h"
#include "platform/Trash.h"

namespace lumenary {

/// Why the gate keeps a build folder where it is.
enum class CleanupSafetyError : std::uint8_t { missing, symbolicLink, protectedPath, changedSize };

/// Why a confirmed move wasn't made after all.
enum class MoveRefusal : std::uint8_t {
  cancelled,
  survivorGone,  ///< the copy that was to stay isn't there any more, can't be read, or isn't in the person's reach
  isSurvivor,    ///< a copy of it, or of something in it, has gone in the same act because this one stays
  sameFile,      ///< the two copies are one file under two names: nothing would be freed
  copiesDiffer,  ///< the two aren't the same any more
};

/// The sentence for the person.
std::string_view description(CleanupSafetyError error);
std::string_view description(MoveRefusal error);

/// All that can keep an item where it is: a gate, its twin, a reading of its attributes that failed, or the Trash.
using CleanupRefusal = std::variant<CleanupSafetyError, StorageTrashError, MoveRefusal, SystemError, TrashError>;

std::string description(const CleanupRefusal& refusal);

/// False where the attempt left something in the Trash's folders: its journal is to be kept for recovery.
bool isSettled(const CleanupRefusal& refusal);

/// True where a size moved away from the reviewed one by more than a twentieth of it, 1 MiB at the least.
bool differsTooMuch(std::int64_t measured, std::int64_t reviewed);

}  // namespace lumenary
