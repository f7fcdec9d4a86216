#pragma once

#include <coroutine>
#include <optional>
#include <utility>

#include "platform/Executor.h"

namespace lumenary {

/// One wait at a time, which can be cut short. Owner's thread only; must outlive the flow that waits.
class Sleeper {
 public:
  explicit Sleeper(Executor& owner) : owner_(owner) {}
  Sleeper(const Sleeper&) = delete;
  Sleeper& operator=(const Sleeper&) = delete;

  /// Ends after the time, or with `wake`.
  auto sleep(Executor::Duration time) { return Awaiter(*this, time); }

  /// The flow goes on with the owner's next call; without one nothing happens.
  void wake() {
    if (timer_) {
      owner_.cancelTimer(*timer_);
      timer_ = owner_.callAfter({}, [this] { goOn(); });
    }
  }

 private:
  struct Awaiter {
    Awaiter(Sleeper& by, Executor::Duration forTime) : sleeper(by), time(forTime) {}
    Awaiter(const Awaiter&) = delete;
    Awaiter& operator=(const Awaiter&) = delete;
    ~Awaiter() {
      if (isWaiting) {
        sleeper.cancel();
      }
    }

    bool await_ready() const { return time <= Executor::Duration::zero(); }
    void await_suspend(std::coroutine_handle<> awaiting) {
      isWaiting = true;
      sleeper.awaiting_ = awaiting;
      sleeper.timer_ = sleeper.owner_.callAfter(time, [&by = sleeper] { by.goOn(); });
    }
    void await_resume() { isWaiting = false; }

    Sleeper& sleeper;
    Executor::Duration time;
    bool isWaiting = false;
  };

  void goOn() {
    timer_.reset();
    std::exchange(awaiting_, {}).resume();
  }
  void cancel() {
    if (const auto timer = std::exchange(timer_, std::nullopt)) {
      owner_.cancelTimer(*timer);
    }
  }

  Executor& owner_;
  std::optional<Executor::TimerID> timer_;
  std::coroutine_handle<> awaiting_;
};

}  // namespace lumenary
