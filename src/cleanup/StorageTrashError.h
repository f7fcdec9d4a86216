#pragma once

#include <cstdint>
#include <string_view>

namespace lumenary {

/// Why a scanned item stays where it is.
enum class StorageTrashError : std::uint8_t {
  missing,
  notAFile,  ///< a file where there was a folder, or the reverse, or neither
  symbolicLink,
  protectedPath,
  changedSize,
  notPermitted,
};

/// The sentence for the person.
std::string_view description(StorageTrashError error);

}  // namespace lumenary
