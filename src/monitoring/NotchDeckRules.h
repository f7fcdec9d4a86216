#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace lumenary::NotchDeckRules {

/// A process above another one.
struct Ancestor {
  std::int32_t pid = 0;
  std::uint32_t uid = 0;
  std::string arguments{};  ///< joined by blanks

  bool operator==(const Ancestor&) const = default;
};

/// Those that would start a stopped server again, in the order given: watchers and package runners of this user. A
/// shell isn't one: it may be the terminal that the person works in.
std::vector<std::int32_t> supervisors(std::span<const Ancestor> ancestors, std::uint32_t uid);

}  // namespace lumenary::NotchDeckRules
