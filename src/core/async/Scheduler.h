#pragma once

#include <memory>
#include <stop_token>
#include <type_traits>
#include <utility>

#include "core/async/Job.h"
#include "core/async/Workers.h"
#include "platform/Executor.h"

namespace lumenary {

/// Gives work to threads and its answers to the owner.
class Scheduler {
 public:
  /// Both must outlive the value, and the executor the workers' threads.
  Scheduler(Executor& owner, Workers& workers) : owner_(owner), workers_(workers) {}

  /// `work` is called once with a stop token, on a thread of the lane, and its answer is what the job gives. It may use
  /// nothing that the owner's thread uses meanwhile. A stop request is to be `stop`'s where one is given.
  template <class Work, class Value = std::invoke_result_t<Work&, const std::stop_token&>>
  Job<Value> start(Lane lane, Work work, std::stop_source stop = std::stop_source()) {
    auto state = std::make_shared<typename Job<Value>::State>(std::move(stop));
    workers_.run(lane, [state, work = std::move(work), &owner = owner_]() mutable {
      state->answer = std::make_unique<Value>(work(std::as_const(state->stop).get_token()));
      owner.post([state = std::move(state)] { state->end(); });
    });
    return Job<Value>(std::move(state));
  }

  /// Work whose answer nobody waits for.
  void run(Lane lane, Workers::Work work) { workers_.run(lane, std::move(work)); }

  /// Makes a shared value that a worker takes apart when the last one lets go of it: for what is so large that this
  /// would hold the owner up. The function may be used on any thread; after the scheduler is gone, whoever lets go does
  /// it.
  auto sharer() {
    return [weak = std::weak_ptr(whileAlive_)]<class Value>(Value value) {
      return std::shared_ptr<const Value>(new Value(std::move(value)), [weak](const Value* last) {
        std::unique_ptr<const Value> owned(last);
        if (const auto workers = weak.lock()) {
          workers->run(Lane::utility, [owned = std::move(owned)] {});
        }
      });
    };
  }

  Executor& owner() { return owner_; }

 private:
  Executor& owner_;
  Workers& workers_;
  std::shared_ptr<Workers> whileAlive_{&workers_, [](Workers*) {}};  ///< owns nothing
};

}  // namespace lumenary
