#pragma once

#include <cstddef>
#include <cstdint>

/// SplitMix64: the distributions of the C++ library differ from one library to the next, this doesn't.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed * 0x9E3779B97F4A7C15U) {}

  std::size_t below(std::size_t limit) {
    state_ += 0x9E3779B97F4A7C15U;
    std::uint64_t mixed = (state_ ^ (state_ >> 30)) * 0xBF58476D1CE4E5B9U;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBU;
    return (mixed ^ (mixed >> 31)) % limit;
  }
  std::size_t between(std::size_t low, std::size_t high) { return low + below(high - low + 1); }

  /// As in source and package trees: mostly some hundred bytes, few empty, few of many blocks.
  std::size_t fileSize() {
    const std::size_t hundredth = below(100);
    if (hundredth < 3) {
      return 0;
    }
    return hundredth < 55   ? between(8, 900)
           : hundredth < 90 ? between(901, 4096)
           : hundredth < 99 ? between(4097, 16384)
                            : between(16385, 65536);
  }

 private:
  std::uint64_t state_;
};
