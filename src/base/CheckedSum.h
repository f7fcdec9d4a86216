#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace lumenary {

/// The sum of two byte counts. A sum that leaves 64 bits is a broken promise of the program itself and stops it.
inline std::int64_t checkedSum(std::int64_t a, std::int64_t b) {
  std::int64_t sum = 0;
  if (__builtin_add_overflow(a, b, &sum)) {
    std::fputs("Lumenary: a sum of bytes left 64 bits.\n", stderr);
    std::abort();
  }
  return sum;
}

/// For counts that were read from somewhere: a sum that leaves 64 bits stays at the limit.
inline std::int64_t saturatedSum(std::int64_t a, std::int64_t b) {
  std::int64_t sum = 0;
  if (__builtin_add_overflow(a, b, &sum)) {
    return b < 0 ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
  }
  return sum;
}

}  // namespace lumenary
