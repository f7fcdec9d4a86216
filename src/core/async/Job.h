#pragma once

#include <algorithm>
#include <coroutine>
#include <memory>
#include <stop_token>
#include <utility>
#include <vector>

namespace lumenary {

/// Work that runs on another thread, and its answer on the owner's. Copies stand for the same work, and any number of
/// flows may await it. When the last copy goes before the work has ended, the work is asked to stop and its answer is
/// dropped. Owner's thread only.
template <class Value>
class Job {
 public:
  /// What the worker and the owner share. The worker writes `answer` before it posts `end`; all else is the owner's.
  struct State {
    explicit State(std::stop_source source) : stop(std::move(source)) {}

    /// On the owner's thread, once.
    void end() {
      hasEnded = true;
      // Whoever goes on may take others of the list with it.
      while (!awaiting.empty()) {
        const std::coroutine_handle<> next = awaiting.front();
        awaiting.erase(awaiting.begin());
        next.resume();
      }
    }

    std::stop_source stop;
    std::unique_ptr<Value> answer;
    bool hasEnded = false;
    std::vector<std::coroutine_handle<>> awaiting;
  };

  explicit Job(std::shared_ptr<State> state) : state_(std::move(state)), interest_(state_.get(), StopsWork{state_}) {}

  /// Asks the work to stop. Its answer still comes, whatever it is by then.
  void cancel() const { state_->stop.request_stop(); }

  /// The answer, which stays with the job.
  auto operator co_await() const& { return Awaiter<const Value&>(*state_); }
  /// The answer itself, of a job that nobody else holds.
  auto operator co_await() && { return Awaiter<Value>(*state_); }

 private:
  struct StopsWork {
    void operator()(State*) const {
      if (!state->hasEnded) {
        state->stop.request_stop();
      }
    }
    std::shared_ptr<State> state;
  };

  template <class Taken>
  struct Awaiter {
    explicit Awaiter(State& of) : state(of) {}
    Awaiter(const Awaiter&) = delete;
    Awaiter& operator=(const Awaiter&) = delete;
    ~Awaiter() {
      if (handle) {
        std::erase(state.awaiting, handle);
      }
    }

    bool await_ready() const { return state.hasEnded; }
    void await_suspend(std::coroutine_handle<> awaiting) {
      handle = awaiting;
      state.awaiting.push_back(awaiting);
    }
    Taken await_resume() { return static_cast<Taken>(std::move(*state.answer)); }

    State& state;
    std::coroutine_handle<> handle;
  };

  std::shared_ptr<State> state_;
  std::shared_ptr<State> interest_;  ///< counts the handles alone
};

}  // namespace lumenary
