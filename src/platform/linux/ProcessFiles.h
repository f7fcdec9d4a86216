#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The texts of one process below /proc. A process chooses its name and its arguments; nothing it writes there can pass
/// for a line or a field of the kernel's.
namespace lumenary {

/// /proc/PID/stat.
struct ProcessStat {
  std::string_view name;  ///< at most 15 bytes, any of them; in the text that was parsed
  char state = '\0';
  std::int32_t parent = 0;
  std::uint64_t flags = 0;
  std::uint64_t faults = 0;      ///< pages it asked for, from memory or disk
  std::uint64_t cpuTicks = 0;    ///< of user and system
  std::uint64_t startTicks = 0;  ///< since the machine started
  std::uint64_t virtualBytes = 0;
  std::uint64_t residentPages = 0;

  bool isKernelThread() const;
  /// It ended, and only its parent hasn't asked how.
  bool hasEnded() const { return state == 'Z' || state == 'X'; }
  bool operator==(const ProcessStat&) const = default;
};
std::optional<ProcessStat> parseProcessStat(std::string_view text);

/// /proc/PID/status. A kernel's thread has no memory of its own.
struct ProcessStatus {
  std::uint32_t uid = 0;             ///< the effective one
  std::uint64_t footprintBytes = 0;  ///< private and shared memory of no file, and what of it is swapped out

  bool operator==(const ProcessStatus&) const = default;
};
std::optional<ProcessStatus> parseProcessStatus(std::string_view text);

/// /proc/PID/cmdline: arguments that end in NUL. What a process wrote over them itself is one argument.
std::vector<std::string> parseArguments(std::string_view text);

/// Which app the names of the control groups in /proc/PID/cgroup speak of: a desktop id, a Flatpak id, or the name of a
/// snap. Desktops put each app that they start into a unit of its own, "app-gnome-org.gnome.Maps-1234.scope"; snaps do
/// the same, "snap.firefox.firefox-UUID.scope". Empty where there is none.
std::string appIDOfControlGroup(std::string_view text);

}  // namespace lumenary
