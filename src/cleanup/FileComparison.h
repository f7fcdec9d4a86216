#pragma once

#include <cstdint>
#include <stop_token>

#include "platform/ContentReader.h"

namespace lumenary {

enum class Comparison : std::uint8_t {
  same,
  sameFile,   ///< one file that was opened twice
  different,  ///< the bytes differ, or somebody wrote to one of them meanwhile
  unreadable,
  cancelled,
};

/// Reads two opened files side by side to their ends.
Comparison compareContents(const ContentReader& contents, const Descriptor& a, const Descriptor& b,
                           const std::stop_token& stop);

}  // namespace lumenary
