#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "platform/linux/LinuxExecutor.h"

namespace lumenary {
namespace {

using namespace std::chrono_literals;

TEST(LinuxExecutor, CallsComeInTheOrderTheyWerePostedAndTimersInTheOrderTheyAreDue) {
  LinuxExecutor executor;
  std::string story;
  executor.callAfter(2ms, [&] {
    story += "d";
    executor.stop();
  });
  executor.callAfter(1ms, [&] { story += "c"; });
  const auto cancelled = executor.callAfter(1ms, [&] { story += "never"; });
  executor.callAfter(0ms, [&] { executor.cancelTimer(cancelled); });
  executor.post([&] {
    story += "a";
    executor.post([&] { story += "b"; });
  });
  executor.run();
  EXPECT_EQ(story.find("never"), std::string::npos);
  EXPECT_LT(story.find('a'), story.find('b'));
  EXPECT_LT(story.find('c'), story.find('d'));
}

TEST(LinuxExecutor, APostOfAnotherThreadWakesIt) {
  for (int repeat = 0; repeat < 100; ++repeat) {
    LinuxExecutor executor;
    int sum = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 3; ++thread) {
      threads.emplace_back([&] {
        for (int number = 0; number < 100; ++number) {
          executor.post([&] { sum += 1; });
        }
        executor.post([&] {
          if (sum >= 300) {
            executor.stop();
          }
        });
      });
    }
    executor.run();
    for (std::thread& thread : threads) {
      thread.join();
    }
    EXPECT_EQ(sum, 300);
  }
}

TEST(LinuxExecutor, TellsOfAFileThatCanBeReadUntilToldNotTo) {
  int ends[2] = {};
  ASSERT_EQ(::pipe(ends), 0);
  const Descriptor in(ends[0]);
  const Descriptor out(ends[1]);
  LinuxExecutor executor;
  int calls = 0;
  executor.watch(in, [&] {
    char taken = 0;
    calls += ::read(in.number(), &taken, 1) == 1 ? 1 : 100;
  });
  executor.runReady();
  EXPECT_EQ(calls, 0);
  ASSERT_EQ(::write(out.number(), "xy", 2), 2);
  executor.runReady();
  executor.runReady();
  executor.runReady();
  EXPECT_EQ(calls, 2);
  ASSERT_EQ(::write(out.number(), "z", 1), 1);
  executor.stopWatching(in);
  executor.runReady();
  EXPECT_EQ(calls, 2);
}

}  // namespace
}  // namespace lumenary
