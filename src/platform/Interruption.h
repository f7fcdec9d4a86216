#pragma once

#include <atomic>
#include <memory>
#include <stop_token>

namespace lumenary {

/// Turns Ctrl-C, a hang-up and a request to end into a stop request while the value lives. Made before any
/// other thread is started.
class Interruption {
 public:
  virtual ~Interruption() = default;
  virtual std::stop_token token() const = 0;
  /// Ends this process by the signal that came, as a shell expects of an interrupted program. Returns where none came.
  virtual void endProcessIfInterrupted() = 0;
};

}  // namespace lumenary
