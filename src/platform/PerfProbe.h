#pragma once

#include <chrono>
#include <functional>
#include <set>
#include <string>
#include <string_view>

namespace lumenary {

/// A developer's measuring aid, off unless the environment asks for it. It changes no result.
struct PerfProbe {
  bool isOn = false;                              ///< $LUMENARY_BENCH is "1": measurements go to standard output
  std::set<std::string, std::less<>> disabled{};  ///< $LUMENARY_OFF, separated by commas: shortcuts not to take

  /// From the values of the two variables; null where one isn't set.
  static PerfProbe of(const char* bench, const char* off);

  std::chrono::steady_clock::time_point launchedAt{};

  /// Prints how long after the launch a named point was reached, where measurements are on.
  void mark(std::string_view name) const;
  bool isDisabled(std::string_view shortcut) const { return disabled.contains(shortcut); }
};

}  // namespace lumenary
