#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>

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

}  // namespace lumenary
