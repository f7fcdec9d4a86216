#pragma once

#include <atomic>
#include <deque>
#include <map>
#include <mutex>
#include <utility>

#include "platform/Executor.h"

namespace lumenary {

/// The owner is the thread that calls `run` or `runReady`. Everything it waits for is told by one descriptor, so that a
/// loop of another kind can wait for it as well. Asleep it costs nothing: there is one timer, set to what is due next.
class LinuxExecutor final : public Executor {
 public:
  LinuxExecutor();
  ~LinuxExecutor() override;
  LinuxExecutor(const LinuxExecutor&) = delete;
  LinuxExecutor& operator=(const LinuxExecutor&) = delete;

  void post(Call call) override;
  Instant now() const override;
  TimerID callAfter(Duration delay, Call call) override;
  void cancelTimer(TimerID timer) override;
  void watch(const Descriptor& file, std::function<void()> call) override;
  void stopWatching(const Descriptor& file) override;

  /// Can be read whenever `runReady` has something to do.
  const Descriptor& readiness() const { return poll_; }
  /// Makes the calls that are due now, and none that they lead to, without waiting.
  void runReady();
  /// The same again and again, waiting in between, until `stop`; it can be run again.
  void run();
  /// From any thread.
  void stop();

 private:
  using DueTime = std::pair<Instant, TimerID>;  // equal times in the order they were set

  void runPosted();
  void runTimers();
  void setTimer();

  Descriptor poll_;
  Descriptor wakeUp_;
  Descriptor timer_;
  std::mutex lock_;
  std::deque<Call> posted_;
  std::atomic<bool> isStopped_ = false;

  std::map<DueTime, Call> timers_;
  std::map<TimerID, Instant> dueTimes_;
  TimerID lastTimer_ = 0;
  Instant timerSetTo_{};
  std::map<int, std::function<void()>> watched_;
};

}  // namespace lumenary
