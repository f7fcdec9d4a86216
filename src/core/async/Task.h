#pragma once

#include <concepts>
#include <coroutine>
#include <exception>
#include <memory>
#include <utility>

namespace lumenary {

template <class Value = void>
class Task;

namespace detail {

/// What both kinds of tasks share: a task begins when it is started or awaited, and its end goes on with who awaits it.
struct TaskPromiseBase {
  struct Final {
    bool await_ready() noexcept { return false; }
    template <class Promise>
    std::coroutine_handle<> await_suspend(std::coroutine_handle<Promise> ended) noexcept {
      return ended.promise().awaiting;
    }
    void await_resume() noexcept {}
  };

  std::suspend_always initial_suspend() noexcept { return {}; }
  Final final_suspend() noexcept { return {}; }
  /// Flows answer with values; what is thrown nevertheless is a broken promise of the program.
  void unhandled_exception() noexcept { std::terminate(); }

  std::coroutine_handle<> awaiting = std::noop_coroutine();
  bool isStarted = false;
};

template <class Value>
struct TaskPromise : TaskPromiseBase {
  Task<Value> get_return_object();
  template <std::convertible_to<Value> Given>
  void return_value(Given&& given) {
    value = std::make_unique<Value>(std::forward<Given>(given));
  }
  Value take() { return std::move(*value); }

  std::unique_ptr<Value> value;
};

template <>
struct TaskPromise<void> : TaskPromiseBase {
  Task<void> get_return_object();
  void return_void() {}
  void take() {}
};

}  // namespace detail

/// A flow of steps on the owner's thread, which waits with `co_await` without holding the thread. It has one owner:
/// with the value go the flow, as far as it has come, and all that it awaits. A task may not be destroyed from within.
template <class Value>
class [[nodiscard]] Task {
 public:
  using promise_type = detail::TaskPromise<Value>;
  using Handle = std::coroutine_handle<promise_type>;

  explicit Task(Handle handle) : handle_(handle) {}
  Task(Task&& other) noexcept : handle_(std::exchange(other.handle_, {})) {}
  Task& operator=(Task&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~Task() {
    if (handle_) {
      handle_.destroy();
    }
  }

  /// Runs up to the first wait; the flow then goes on beside its caller until it is awaited.
  void start() {
    handle_.promise().isStarted = true;
    handle_.resume();
  }

  /// Starts the task where that hasn't happened, and gives its value. Once.
  auto operator co_await() {
    struct Awaiter {
      bool await_ready() const { return handle.done(); }
      std::coroutine_handle<> await_suspend(std::coroutine_handle<> awaiting) {
        auto& promise = handle.promise();
        promise.awaiting = awaiting;
        return std::exchange(promise.isStarted, true) ? std::coroutine_handle<>(std::noop_coroutine()) : handle;
      }
      Value await_resume() { return handle.promise().take(); }

      Handle handle;
    };
    return Awaiter{handle_};
  }

 private:
  Handle handle_;
};

template <class Value>
Task<Value> detail::TaskPromise<Value>::get_return_object() {
  return Task<Value>(std::coroutine_handle<TaskPromise>::from_promise(*this));
}

inline Task<void> detail::TaskPromise<void>::get_return_object() {
  return Task<void>(std::coroutine_handle<TaskPromise>::from_promise(*this));
}

}  // namespace lumenary
