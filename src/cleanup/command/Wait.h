#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>
#include <type_traits>
#include <utility>

#include "cleanup/command/ProgressLine.h"

namespace lumenary::CleanupCommand {

/// Carries one value out of the thread that makes it to the thread that waits for it.
template <class T>
class ResultBox {
 public:
  void put(T value) {
    const std::scoped_lock lock(mutex_);
    value_.emplace(std::move(value));
    filled_.notify_one();
  }

  /// True as soon as the value is there, false after `patience` without it.
  bool isFilledWithin(std::chrono::milliseconds patience) {
    std::unique_lock lock(mutex_);
    return filled_.wait_for(lock, patience, [this] { return value_.has_value(); });
  }

  /// Blocks until the value is there. Once only.
  T take() {
    std::unique_lock lock(mutex_);
    while (!value_) {
      filled_.wait(lock);
    }
    return *std::move(value_);
  }

 private:
  std::mutex mutex_;
  std::condition_variable filled_;
  std::optional<T> value_;
};

/// Runs the operation on a thread of its own and returns its value; the calling thread blocks and draws the progress.
template <class Operation>
std::invoke_result_t<Operation> wait(ProgressLine& progressLine, Operation operation) {
  ResultBox<std::invoke_result_t<Operation>> box;
  const std::jthread worker([&] { box.put(operation()); });
  while (progressLine.isVisible() && !box.isFilledWithin(ProgressLine::interval)) {
    progressLine.draw(ProgressLine::Clock::now());
  }
  return box.take();
}

}  // namespace lumenary::CleanupCommand
