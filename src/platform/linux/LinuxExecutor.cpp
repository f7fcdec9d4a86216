#include "platform/linux/LinuxExecutor.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <span>

namespace lumenary {
namespace {

constexpr int mostEvents = 16;

/// Without these the program can't wait for anything; they fail only where no file can be opened any more.
Descriptor required(int number) {
  if (number < 0) {
    std::abort();
  }
  return Descriptor(number);
}

/// False where the system doesn't watch such a file.
bool add(const Descriptor& poll, const Descriptor& file) {
  epoll_event event{};
  event.events = EPOLLIN;
  event.data.fd = file.number();
  return ::epoll_ctl(poll.number(), EPOLL_CTL_ADD, file.number(), &event) == 0;
}

/// Takes the count that makes an event or timer descriptor readable.
void take(const Descriptor& counter) {
  std::uint64_t count = 0;
  static_cast<void>(::read(counter.number(), &count, sizeof count) == sizeof count);
}

timespec timespecOf(Executor::Duration time) {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(time);
  return {.tv_sec = seconds.count(), .tv_nsec = std::chrono::nanoseconds(time - seconds).count()};
}

}  // namespace

LinuxExecutor::LinuxExecutor()
    : poll_(required(::epoll_create1(EPOLL_CLOEXEC))),
      wakeUp_(required(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))),
      timer_(required(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK))) {
  add(poll_, wakeUp_);
  add(poll_, timer_);
}

LinuxExecutor::~LinuxExecutor() = default;

void LinuxExecutor::post(Call call) {
  bool isFirst = false;
  {
    const std::lock_guard guard(lock_);
    isFirst = posted_.empty();
    posted_.push_back(std::move(call));
  }
  if (isFirst) {
    constexpr std::uint64_t one = 1;
    static_cast<void>(::write(wakeUp_.number(), &one, sizeof one) == sizeof one);
  }
}

Executor::Instant LinuxExecutor::now() const { return std::chrono::steady_clock::now(); }

Executor::TimerID LinuxExecutor::callAfter(Duration delay, Call call) {
  const Instant due = now() + std::max(delay, Duration::zero());
  const TimerID timer = ++lastTimer_;
  timers_.emplace(DueTime(due, timer), std::move(call));
  dueTimes_.emplace(timer, due);
  setTimer();
  return timer;
}

void LinuxExecutor::cancelTimer(TimerID timer) {
  if (const auto due = dueTimes_.find(timer); due != dueTimes_.end()) {
    timers_.erase(DueTime(due->second, timer));
    dueTimes_.erase(due);
    setTimer();
  }
}

void LinuxExecutor::setTimer() {
  const Instant due = timers_.empty() ? Instant() : timers_.begin()->first.first;
  if (due == timerSetTo_) {
    return;
  }
  timerSetTo_ = due;
  // All zeros would disarm it, and so it does where nothing is due.
  const itimerspec time{.it_interval = {}, .it_value = timespecOf(due.time_since_epoch())};
  ::timerfd_settime(timer_.number(), TFD_TIMER_ABSTIME, &time, nullptr);
}

void LinuxExecutor::watch(const Descriptor& file, std::function<void()> call) {
  if (add(poll_, file)) {
    watched_.insert_or_assign(file.number(), std::move(call));
  }
}

void LinuxExecutor::stopWatching(const Descriptor& file) {
  ::epoll_ctl(poll_.number(), EPOLL_CTL_DEL, file.number(), nullptr);
  watched_.erase(file.number());
}

void LinuxExecutor::runPosted() {
  take(wakeUp_);
  std::deque<Call> calls;
  {
    const std::lock_guard guard(lock_);
    calls.swap(posted_);
  }
  for (Call& call : calls) {
    call();
  }
}

void LinuxExecutor::runTimers() {
  take(timer_);
  timerSetTo_ = {};
  const DueTime last(now(), lastTimer_);
  while (!timers_.empty() && timers_.begin()->first <= last) {
    auto due = timers_.extract(timers_.begin());
    dueTimes_.erase(due.key().second);
    due.mapped()();
  }
  setTimer();
}

void LinuxExecutor::runReady() {
  std::array<epoll_event, mostEvents> events{};
  const int count = ::epoll_wait(poll_.number(), events.data(), mostEvents, 0);
  for (const epoll_event& event : std::span(events).first(static_cast<std::size_t>(std::max(count, 0)))) {
    const int file = event.data.fd;
    if (file == wakeUp_.number()) {
      runPosted();
    } else if (file == timer_.number()) {
      runTimers();
    } else if (const auto found = watched_.find(file); found != watched_.end()) {
      // A copy: the call may end the watch.
      const std::function<void()> call = found->second;
      call();
    }
  }
}

void LinuxExecutor::run() {
  while (!isStopped_.exchange(false)) {
    epoll_event event{};
    ::epoll_wait(poll_.number(), &event, 1, -1);
    runReady();
  }
}

void LinuxExecutor::stop() {
  isStopped_ = true;
  post([] {});
}

}  // namespace lumenary
