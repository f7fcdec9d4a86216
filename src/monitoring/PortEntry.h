#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/Date.h"

namespace lumenary {

/// A port at which a process waits for others.
struct PortEntry {
  std::string processName{};
  std::int32_t pid = 0;        ///< 0 where the process can't be seen, as those of other people
  std::string protocolName{};  ///< "TCP" or "UDP"
  std::string address{};       ///< "*" for any
  std::int64_t port = 0;
  std::optional<std::string> projectRoot{};
  std::optional<std::string> command{};
  std::optional<Date> startedAt{};
  std::optional<std::uint32_t> ownerUID{};

  /// A developer's own server: what may be offered for stopping.
  bool isDevServer() const;

  bool operator==(const PortEntry&) const = default;

  static constexpr std::array<std::int64_t, 2> systemPorts = {5037, 5353};
  /// Names of processes, in lower case.
  static constexpr std::array<std::string_view, 8> backgroundTools = {
      "adb",      "mdnsresponder", "qemu-system-aarch64", "qemu-system-x86_64", "emulator",
      "rapportd", "sharingd",      "controlcenter"};
};

}  // namespace lumenary
