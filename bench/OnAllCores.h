#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <thread>
#include <vector>

/// Calls `work` with each number below `count`, in no order, on as many threads as there are cores.
template <class Work>
void onAllCores(std::size_t count, Work work) {
  std::atomic<std::size_t> next = 0;
  std::vector<std::jthread> threads;
  for (unsigned core = 0; core < std::max(1U, std::thread::hardware_concurrency()); ++core) {
    threads.emplace_back([&] {
      for (std::size_t index = next++; index < count; index = next++) {
        work(index);
      }
    });
  }
}
