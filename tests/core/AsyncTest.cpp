#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "core/async/Scheduler.h"
#include "core/async/Sleeper.h"
#include "core/async/Task.h"
#include "core/async/TaskScope.h"
#include "support/ManualAsync.h"

namespace lumenary {
namespace {

using namespace std::chrono_literals;
using Story = std::vector<std::string>;

struct AsyncTest : testing::Test {
  ManualExecutor owner;
  ManualWorkers workers;
  Scheduler scheduler{owner, workers};
  Story story;

  Job<int> answer(int value, std::stop_source stop = std::stop_source()) {
    return scheduler.start(
        Lane::utility, [value](const std::stop_token& token) { return token.stop_requested() ? -1 : value; },
        std::move(stop));
  }
  void workAndRun() {
    workers.runOne();
    owner.runAll();
  }
};

/// Tells when it is destroyed.
struct Witness {
  Witness(Story& of, std::string called) : story(of), name(std::move(called)) {}
  Witness(const Witness&) = delete;
  Witness& operator=(const Witness&) = delete;
  ~Witness() { story.push_back("end of " + name); }

  Story& story;
  std::string name;
};

TEST_F(AsyncTest, AFlowGoesOnWhereItsWorkEndedAndNotBefore) {
  const auto inner = [](AsyncTest& test) -> Task<int> {
    const int first = co_await test.answer(3);
    test.story.push_back("first");
    co_return first + co_await test.answer(4);
  };
  const auto outer = [&](AsyncTest& test) -> Task<> { test.story.push_back(std::to_string(co_await inner(test))); };
  TaskScope scope;
  scope.spawn(outer(*this));
  owner.runAll();
  EXPECT_EQ(story, Story{});
  workAndRun();
  EXPECT_EQ(story, Story{"first"});
  workAndRun();
  EXPECT_EQ(story, (Story{"first", "7"}));
  EXPECT_TRUE(scope.isIdle());
}

TEST_F(AsyncTest, AChildThatWasStartedGoesOnBesideItsParent) {
  const auto child = [](AsyncTest& test) -> Task<> {
    co_await test.answer(1);
    test.story.push_back("child");
  };
  const auto parent = [&](AsyncTest& test) -> Task<> {
    Task<> beside = child(test);
    beside.start();
    co_await test.answer(2);
    test.story.push_back("parent");
    co_await beside;
    test.story.push_back("after both");
  };
  TaskScope scope;
  scope.spawn(parent(*this));
  workAndRun();
  workAndRun();
  EXPECT_EQ(story, (Story{"child", "parent", "after both"}));
}

TEST_F(AsyncTest, ManyAwaitOneJob) {
  const auto waiting = [](AsyncTest& test, Job<int> job, std::string name) -> Task<> {
    const int& value = co_await job;
    test.story.push_back(name + std::to_string(value));
  };
  TaskScope scope;
  {
    const Job<int> job = answer(5);
    scope.spawn(waiting(*this, job, "a"));
    scope.spawn(waiting(*this, job, "b"));
  }
  workAndRun();
  EXPECT_EQ(story, (Story{"a5", "b5"}));
}

TEST_F(AsyncTest, WorkIsAskedToStopWhenNobodyHoldsItsJob) {
  struct Case {
    const char* name;
    bool keepsCopy;
    bool cancels;
    int answer;
  };
  for (const Case& tried :
       {Case{"held", true, false, 9}, Case{"dropped", false, false, -1}, Case{"cancelled", true, true, -1}}) {
    SCOPED_TRACE(tried.name);
    std::optional<int> seen;
    std::optional<Job<int>> job = scheduler.start(Lane::utility, [&](const std::stop_token& token) {
      seen = token.stop_requested() ? -1 : 9;
      return *seen;
    });
    if (tried.cancels) {
      job->cancel();
    }
    if (!tried.keepsCopy) {
      job.reset();
    }
    workAndRun();
    EXPECT_EQ(seen, tried.answer);
  }
}

TEST_F(AsyncTest, AJobThatHasEndedLeavesTheStopSourceOfItsFlowAlone) {
  std::stop_source stop;
  {
    const Job<int> job = answer(1, stop);
    workAndRun();
  }
  EXPECT_FALSE(stop.stop_requested());
  {
    const Job<int> job = answer(1, stop);
  }
  EXPECT_TRUE(stop.stop_requested());
}

TEST_F(AsyncTest, WithTheScopeEndsWhatItsFlowsHadAndWhatTheyWaitFor) {
  const auto flow = [](AsyncTest& test) -> Task<> {
    const Witness witness(test.story, "flow");
    co_await test.answer(1);
    test.story.push_back("never");
  };
  {
    TaskScope scope;
    scope.spawn(flow(*this));
    scope.spawn(flow(*this));
  }
  workAndRun();
  workAndRun();
  EXPECT_EQ(story, (Story{"end of flow", "end of flow"}));
}

TEST_F(AsyncTest, WhoGoesOnMayEndAnotherThatWaitsForTheSame) {
  std::optional<TaskScope> other(std::in_place);
  const auto ends = [&](AsyncTest& test, Job<int> job) -> Task<> {
    co_await job;
    other.reset();
    test.story.push_back("ended it");
  };
  const auto waits = [](AsyncTest& test, Job<int> job) -> Task<> {
    co_await job;
    test.story.push_back("never");
  };
  TaskScope scope;
  const Job<int> job = answer(1);
  scope.spawn(ends(*this, job));
  other->spawn(waits(*this, job));
  workAndRun();
  EXPECT_EQ(story, Story{"ended it"});
}

TEST_F(AsyncTest, ASleepEndsAtItsTimeOrWhenWoken) {
  const auto flow = [](AsyncTest& test, Sleeper& sleeper) -> Task<> {
    co_await sleeper.sleep(0s);
    test.story.push_back("at once");
    co_await sleeper.sleep(30s);
    test.story.push_back(std::to_string(test.owner.elapsed() / 1s));
    co_await sleeper.sleep(30s);
    test.story.push_back(std::to_string(test.owner.elapsed() / 1s));
    co_await sleeper.sleep(30s);
  };
  Sleeper sleeper(owner);
  {
    TaskScope scope;
    scope.spawn(flow(*this, sleeper));
    owner.advance(29s);
    EXPECT_EQ(story, Story{"at once"});
    owner.advance(6s);
    sleeper.wake();
    sleeper.wake();
    EXPECT_EQ(story.size(), 2U) << "it goes on with the owner's next call";
    owner.runAll();
    EXPECT_EQ(story, (Story{"at once", "30", "35"}));
  }
  EXPECT_EQ(owner.timerCount(), 0U);
}

TEST_F(AsyncTest, ThreadsDoTheWorkOfALaneInOrderAndAnswerOnTheOwner) {
  constexpr int count = 200;
  for (int repeat = 0; repeat < 100; ++repeat) {
    std::vector<int> begun;  // of one thread, as the lane has one
    int ended = 0;
    const auto owning = std::this_thread::get_id();
    ThreadWorkers threads(setThreadPriority);
    Scheduler real(owner, threads);
    const auto flow = [&](int number) -> Task<> {
      const int doubled = co_await real.start(Lane::store, [&begun, number](const std::stop_token&) {
        begun.push_back(number);
        return 2 * number;
      });
      const bool isOwner = co_await real.start(
          Lane::interactive, [owning](const std::stop_token&) { return std::this_thread::get_id() == owning; });
      ended += doubled == 2 * number && !isOwner && std::this_thread::get_id() == owning ? 1 : 0;
    };
    TaskScope scope;
    for (int number = 0; number < count; ++number) {
      scope.spawn(flow(number));
    }
    ASSERT_TRUE(owner.runUntil([&] { return scope.isIdle(); }));
    EXPECT_EQ(ended, count);
    ASSERT_EQ(begun.size(), static_cast<std::size_t>(count));
    EXPECT_TRUE(std::ranges::is_sorted(begun));
  }
}

TEST_F(AsyncTest, AtTheEndWritesAreFinishedAndOtherWorkIsDropped) {
  std::atomic<int> written = 0;
  std::atomic<int> looked = 0;
  {
    ThreadWorkers threads(setThreadPriority);
    for (int number = 0; number < 50; ++number) {
      threads.run(Lane::store, [&] { ++written; });
      threads.run(Lane::watch, [&] {
        std::this_thread::yield();
        ++looked;
      });
    }
  }
  EXPECT_EQ(written, 50);
  EXPECT_LE(looked, 50);
}

TEST_F(AsyncTest, WhatIsSharedIsTakenApartByAWorkerAndWithoutOneInItsPlace) {
  std::optional<Scheduler> passing(std::in_place, owner, workers);
  const auto share = passing->sharer();
  const auto witness = [&](const char* name) { return share(std::make_shared<Witness>(story, name)); };
  auto first = witness("first");
  auto second = witness("second");
  first.reset();
  EXPECT_EQ(story, Story{});
  workers.runOne();
  EXPECT_EQ(story, Story{"end of first"});
  passing.reset();
  second.reset();
  EXPECT_EQ(story, (Story{"end of first", "end of second"}));
}

TEST_F(AsyncTest, ResultsThatComeAfterTheirFlowIsGoneAreDropped) {
  for (int repeat = 0; repeat < 100; ++repeat) {
    std::atomic<int> stopped = 0;
    {
      ThreadWorkers threads(setThreadPriority);
      Scheduler real(owner, threads);
      TaskScope scope;
      const auto flow = [&]() -> Task<> {
        co_await real.start(Lane::utility, [&stopped](const std::stop_token& token) {
          stopped += token.stop_requested() ? 1 : 0;
          return std::make_unique<int>(1);
        });
        story.push_back("late");
      };
      for (int number = 0; number < 10; ++number) {
        scope.spawn(flow());
      }
    }
    story.clear();
    owner.runAll();
    EXPECT_EQ(story, Story{});
    EXPECT_LE(stopped, 10);
  }
}

}  // namespace
}  // namespace lumenary
