#pragma once

#include <poll.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <utility>

#include "core/async/Workers.h"
#include "platform/Executor.h"

namespace lumenary {

/// An owner whose calls run when the test says so, and whose clock the test turns.
class ManualExecutor final : public Executor {
 public:
  void post(Call call) override {
    const std::lock_guard guard(lock_);
    posted_.push_back(std::move(call));
    hasCalls_.notify_all();
  }
  Instant now() const override { return now_; }
  TimerID callAfter(Duration delay, Call call) override {
    timers_.emplace(std::pair(now() + delay, ++lastTimer_), std::move(call));
    return lastTimer_;
  }
  void cancelTimer(TimerID timer) override {
    std::erase_if(timers_, [&](const auto& entry) { return entry.first.second == timer; });
  }
  void watch(const Descriptor& file, std::function<void()> call) override { watched_[file.number()] = std::move(call); }
  void stopWatching(const Descriptor& file) override { watched_.erase(file.number()); }

  /// Makes all calls that were posted, those that they lead to as well, and the timers that are due.
  void runAll() {
    while (runPosted() || runDueTimer(now_)) {
    }
  }
  /// Turns the clock on; what falls due on the way runs at its time.
  void advance(Duration time) {
    const Instant end = now() + time;
    runAll();
    while (runDueTimer(end)) {
      runAll();
    }
    now_ = end;
  }
  /// For real threads: runs what they post until the condition holds. The limit only ends a test that would hang.
  bool runUntil(const std::function<bool()>& condition) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    runAll();
    while (!condition()) {
      std::unique_lock held(lock_);
      if (!hasCalls_.wait_until(held, limit, [&] { return !posted_.empty(); })) {
        return false;
      }
      held.unlock();
      runAll();
    }
    return true;
  }
  /// Tells of the watched files that can be read, in truth.
  void pollWatched() {
    auto watched = watched_;
    for (const auto& [file, call] : watched) {
      pollfd state{.fd = file, .events = POLLIN, .revents = 0};
      if (::poll(&state, 1, 0) > 0 && (state.revents & POLLIN) != 0) {
        call();
      }
    }
  }
  /// The watched file can be read.
  void signal(const Descriptor& file) { watched_.at(file.number())(); }
  bool isWatching(const Descriptor& file) const { return watched_.contains(file.number()); }

  /// The longest that one call kept the owner's thread.
  Duration longestHold() const { return longestHold_; }

  std::size_t timerCount() const { return timers_.size(); }
  Duration elapsed() const { return now().time_since_epoch(); }

 private:
  bool runPosted() {
    Call call;
    {
      const std::lock_guard guard(lock_);
      if (posted_.empty()) {
        return false;
      }
      call = std::move(posted_.front());
      posted_.pop_front();
    }
    hold(call);
    return true;
  }
  void hold(Call& call) {
    const auto began = std::chrono::steady_clock::now();
    call();
    longestHold_ = std::max<Duration>(longestHold_, std::chrono::steady_clock::now() - began);
  }
  bool runDueTimer(Instant until) {
    if (timers_.empty() || timers_.begin()->first.first > until) {
      return false;
    }
    auto due = timers_.extract(timers_.begin());
    now_ = std::max(now_.load(), due.key().first);
    hold(due.mapped());
    return true;
  }

  std::mutex lock_;
  std::condition_variable hasCalls_;
  std::deque<Call> posted_;
  std::map<std::pair<Instant, TimerID>, Call> timers_;
  std::map<int, std::function<void()>> watched_;
  TimerID lastTimer_ = 0;
  std::atomic<Instant> now_{};  ///< also read by work that asks for the time
  Duration longestHold_{};
};

/// Work that is done when the test says so, on the test's own thread.
class ManualWorkers final : public Workers {
 public:
  void run(Lane lane, Work work) override { waiting_.emplace_back(lane, std::move(work)); }

  std::size_t waitingIn(Lane lane) const {
    return static_cast<std::size_t>(std::ranges::count(waiting_, lane, &std::pair<Lane, Work>::first));
  }
  bool isIdle() const { return waiting_.empty(); }

  /// The work that waits longest, of that lane; false where none waits.
  bool runOne(Lane lane) {
    const auto next = std::ranges::find(waiting_, lane, &std::pair<Lane, Work>::first);
    return next != waiting_.end() && runAt(next);
  }
  bool runOne() { return !waiting_.empty() && runAt(waiting_.begin()); }

 private:
  using Waiting = std::deque<std::pair<Lane, Work>>;

  bool runAt(Waiting::iterator at) {
    Work work = std::move(at->second);
    waiting_.erase(at);
    work();
    return true;
  }

  Waiting waiting_;
};

/// Real threads, and how much of their work hasn't ended.
class CountedThreads final : public Workers {
 public:
  explicit CountedThreads(Executor& owner) : owner_(owner), threads_(setThreadPriority) {}

  void run(Lane lane, Work work) override {
    ++pending_;
    threads_.run(lane, [this, work = std::move(work)]() mutable {
      work();
      work = {};
      // The owner may be waiting for this to be the last.
      owner_.post([this] { --pending_; });
    });
  }
  bool isIdle() const { return pending_ == 0; }

 private:
  Executor& owner_;
  std::atomic<std::size_t> pending_ = 0;
  ThreadWorkers threads_;
};

}  // namespace lumenary
