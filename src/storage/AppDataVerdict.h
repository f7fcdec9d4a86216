#pragma once

#include <cstdint>

namespace lumenary {

/// Whether a thing that an app or the system keeps may go; what may go first stands first.
enum class AppDataVerdict : std::uint8_t { safe, caution, keep };

}  // namespace lumenary
