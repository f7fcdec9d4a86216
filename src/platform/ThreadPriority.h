#pragma once

#include <cstdint>

namespace lumenary {

/// How a thread stands to others for the processor and the disk. It can only be lowered.
enum class ThreadPriority : std::uint8_t {
  normal,
  low,     ///< gives way where others want to run
  lowest,  ///< runs on what is left over
};

/// Of the calling thread and of those that it makes from then on. Best effort.
void setThreadPriority(ThreadPriority priority);

}  // namespace lumenary
