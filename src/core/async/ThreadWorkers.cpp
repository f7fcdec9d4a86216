#include <algorithm>
#include <iterator>
#include <system_error>
#include <utility>

#include "core/async/Workers.h"

namespace lumenary {
namespace {

struct LaneTraits {
  std::size_t threads = 1;
  ThreadPriority priority = ThreadPriority::normal;
};

constexpr LaneTraits traitsOf(Lane lane) {
  switch (lane) {
    case Lane::interactive:
      return {.threads = 4, .priority = ThreadPriority::normal};
    case Lane::utility:
      return {.threads = 3, .priority = ThreadPriority::low};
    case Lane::background:
      return {.threads = 1, .priority = ThreadPriority::lowest};
    case Lane::insights:
    case Lane::watch:
      return {.threads = 1, .priority = ThreadPriority::low};
    case Lane::store:
    case Lane::acts:
      break;
  }
  return {};
}

}  // namespace

ThreadWorkers::~ThreadWorkers() {
  std::vector<Work> dropped;
  {
    const std::lock_guard guard(lock_);
    isEnding_ = true;
    for (Queue& queue : queues_) {
      if (&queue != &queueOf(Lane::store)) {
        std::ranges::move(queue.waiting, std::back_inserter(dropped));
        queue.waiting.clear();
      }
      queue.hasWork.notify_all();
    }
  }
  for (Queue& queue : queues_) {
    for (std::thread& thread : queue.threads) {
      thread.join();
    }
  }
}

void ThreadWorkers::run(Lane lane, Work work) {
  const std::lock_guard guard(lock_);
  if (isEnding_) {
    return;
  }
  Queue& queue = queueOf(lane);
  queue.waiting.push_back(std::move(work));
  if (queue.waiting.size() > queue.idle && queue.threads.size() < traitsOf(lane).threads) {
    addThread(lane);
  }
  queue.hasWork.notify_one();
}

void ThreadWorkers::addThread(Lane lane) {
  Queue& queue = queueOf(lane);
  try {
    queue.threads.emplace_back([this, lane] { serve(lane); });
  } catch (const std::system_error&) {
    // The system has no thread to give; those of the lane go on with what waits.
    if (queue.threads.empty()) {
      throw;
    }
  }
}

void ThreadWorkers::serve(Lane lane) {
  setPriority_(traitsOf(lane).priority);
  Queue& queue = queueOf(lane);
  std::unique_lock held(lock_);
  while (true) {
    ++queue.idle;
    queue.hasWork.wait(held, [&] { return isEnding_ || !queue.waiting.empty(); });
    --queue.idle;
    if (queue.waiting.empty()) {
      return;
    }
    {
      Work work = std::move(queue.waiting.front());
      queue.waiting.pop_front();
      held.unlock();
      work();
    }
    held.lock();
  }
}

}  // namespace lumenary
