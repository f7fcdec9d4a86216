#pragma once

#include <signal.h>

#include <atomic>
#include <thread>

#include "platform/Descriptor.h"
#include "platform/Interruption.h"

namespace lumenary {

/// SIGINT, SIGTERM and SIGHUP, but those that the process was told to ignore. They are blocked in the thread that makes
/// the value, and so in all that it starts later; one thread of its own sleeps until the first of them comes. A second
/// one ends the process at once.
class LinuxInterruption final : public Interruption {
 public:
  LinuxInterruption();
  LinuxInterruption(const LinuxInterruption&) = delete;
  LinuxInterruption& operator=(const LinuxInterruption&) = delete;
  /// A signal that came meanwhile and was not acted upon takes its effect now.
  ~LinuxInterruption() override;

  std::stop_token token() const override { return stop_.get_token(); }
  void endProcessIfInterrupted() override;

 private:
  void listen();

  sigset_t taken_{};
  sigset_t formerMask_{};
  Descriptor signals_;
  Descriptor end_;
  std::stop_source stop_;
  std::atomic<int> signal_ = 0;  ///< the first that came
  std::thread listener_;
};

}  // namespace lumenary
