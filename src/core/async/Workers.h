#pragma once

#include <array>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/ThreadPriority.h"

namespace lumenary {

/// What work waits for, and with what it may run at the same time.
enum class Lane : std::uint8_t {
  interactive,  ///< a person waits for it
  utility,      ///< may lag
  background,   ///< gives way to everything
  store,        ///< writes of the store and the settings, one after the other
  acts,         ///< what moves, puts back or empties, one after the other; a person waits
  insights,     ///< reads much of the disk, one after the other; may lag
  watch,        ///< looks for what changed outside, one after the other; may lag
};
inline constexpr std::size_t laneCount = 7;

/// Threads for what blocks.
class Workers {
 public:
  using Work = std::move_only_function<void()>;

  virtual ~Workers() = default;
  /// From any thread. What is begun in one lane is begun in the order it was given.
  virtual void run(Lane lane, Work work) = 0;
};

/// A few threads a lane, made when they are first needed; they sleep without a time limit in between.
class ThreadWorkers final : public Workers {
 public:
  explicit ThreadWorkers(std::function<void(ThreadPriority)> setPriority) : setPriority_(std::move(setPriority)) {}
  /// Waits for what has begun, and for all writes of the store; what else hasn't begun is dropped.
  ~ThreadWorkers() override;

  void run(Lane lane, Work work) override;

 private:
  struct Queue {
    std::deque<Work> waiting;
    std::vector<std::thread> threads;
    std::size_t idle = 0;
    std::condition_variable hasWork;
  };
  Queue& queueOf(Lane lane) { return queues_[static_cast<std::size_t>(lane)]; }
  void addThread(Lane lane);
  void serve(Lane lane);

  std::function<void(ThreadPriority)> setPriority_;
  std::mutex lock_;
  bool isEnding_ = false;
  std::array<Queue, laneCount> queues_;
};

}  // namespace lumenary
