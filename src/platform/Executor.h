#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

#include "platform/Descriptor.h"

namespace lumenary {

/// Where the code of one owner runs: one thread, one call after another, none within another.
class Executor {
 public:
  using Instant = std::chrono::steady_clock::time_point;
  using Duration = std::chrono::steady_clock::duration;
  using Call = std::move_only_function<void()>;
  using TimerID = std::uint64_t;

  virtual ~Executor() = default;
  /// Calls after all that was posted before. From any thread.
  virtual void post(Call call) = 0;

  // The rest is for the owner's thread alone.

  virtual Instant now() const = 0;
  /// Calls once the time has gone by.
  virtual TimerID callAfter(Duration delay, Call call) = 0;
  /// A timer that has gone off, or never was, is no error.
  virtual void cancelTimer(TimerID timer) = 0;
  /// Calls whenever the file can be read; it must stay open until `stopWatching`. One call a file.
  virtual void watch(const Descriptor& file, std::function<void()> call) = 0;
  virtual void stopWatching(const Descriptor& file) = 0;
};

}  // namespace lumenary
