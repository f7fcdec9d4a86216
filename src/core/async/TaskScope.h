#pragma once

#include <coroutine>
#include <exception>
#include <utility>
#include <vector>

#include "core/async/Task.h"

namespace lumenary {

/// Owns flows that nobody awaits. Those that haven't ended when the scope goes end where they are. Owner's thread only,
/// and never destroyed from within one of its flows.
class TaskScope {
 public:
  TaskScope() = default;
  TaskScope(const TaskScope&) = delete;
  TaskScope& operator=(const TaskScope&) = delete;
  ~TaskScope() {
    while (!running_.empty()) {
      running_.back().destroy();
    }
  }

  /// Runs up to the first wait of the task.
  void spawn(Task<> task) { drive(*this, std::move(task)); }

  bool isIdle() const { return running_.empty(); }

 private:
  /// A coroutine that goes away by itself when it ends.
  struct Driver {
    struct promise_type {
      Driver get_return_object() { return {}; }
      std::suspend_never initial_suspend() noexcept { return {}; }
      std::suspend_never final_suspend() noexcept { return {}; }
      void unhandled_exception() noexcept { std::terminate(); }
      void return_void() {}
    };
  };

  /// Keeps the driver that awaits it in the scope's list for as long as it runs.
  struct Listed {
    explicit Listed(TaskScope& of) : scope(of) {}
    Listed(const Listed&) = delete;
    Listed& operator=(const Listed&) = delete;
    ~Listed() { std::erase(scope.running_, driver); }

    bool await_ready() const { return false; }
    bool await_suspend(std::coroutine_handle<> awaiting) {
      driver = awaiting;
      scope.running_.push_back(driver);
      return false;
    }
    void await_resume() {}

    TaskScope& scope;
    std::coroutine_handle<> driver;
  };

  static Driver drive(TaskScope& scope, Task<> task) {
    Listed listed(scope);
    co_await listed;
    co_await task;
  }

  std::vector<std::coroutine_handle<>> running_;
};

}  // namespace lumenary
