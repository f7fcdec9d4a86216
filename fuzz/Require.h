#pragma once

#include <cstdlib>

/// Ends the target where something that must hold doesn't: the fuzzer keeps the input that led there.
inline void require(bool holds) {
  if (!holds) {
    std::abort();
  }
}
