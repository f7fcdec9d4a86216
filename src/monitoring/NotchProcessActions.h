#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/UUID.h"
#include "monitoring/NotchDeckRules.h"
#include "monitoring/NotchProcessIdentity.h"
#include "monitoring/PortEntry.h"
#include "monitoring/PortInspector.h"
#include "monitoring/ProcessInspector.h"
#include "platform/AppControl.h"
#include "platform/ProcessReader.h"

namespace lumenary {

/// What an act came to, for the person.
struct NotchActionResult {
  std::string title{};
  std::vector<std::string> details{};
  bool failed = false;
  std::optional<UUID> undo{};  ///< the cleanup transaction that can be taken back

  bool operator==(const NotchActionResult&) const = default;
};

/// The app that was quit last, kept so that it can be opened again.
struct NotchQuitApp {
  std::string name{};
  std::string path{};

  bool operator==(const NotchQuitApp&) const = default;
};

/// Quitting an app and stopping a server. Never on a process id alone, as that may be another's by now, and never by
/// force. The operations block, `stop` for up to ten seconds; from any thread.
class NotchProcessActions {
 public:
  /// Waits for the time; false if it was cancelled meanwhile.
  using Wait = std::function<bool(std::chrono::milliseconds)>;

  struct Self {
    std::uint32_t uid = 0;
    std::int32_t pid = 0;
  };

  NotchProcessActions(const ProcessReader& processes, AppControl& control, const PortInspector& ports, Self self,
                      Wait wait);

  static bool canStop(const PortEntry& port, std::uint32_t uid, std::int32_t ownPID);

  /// Stops the server at a port, first those that would start it again.
  NotchActionResult stop(const PortEntry& port) const;

  /// Asks the app to quit if it still is the one that was shown.
  bool requestQuit(const AppMemoryUsage& usage, const NotchProcessIdentity& identity) const;

  /// The same with what to tell the person, once it has quit or some five seconds went by.
  NotchActionResult quit(const AppMemoryUsage& usage) const;
  NotchActionResult reopen(const NotchQuitApp& app) const;

  /// Asks an app to quit and waits until it does. What to tell the person, or nothing where it quit.
  std::optional<std::string> quitAndConfirm(ProcessInspector& inspector, const AppMemoryUsage& usage) const;

  /// True once the process is gone; false where it still runs after some five seconds, or the wait was cancelled.
  bool waitForExit(const NotchProcessIdentity& identity) const;

  /// The parents of a process, the nearest first, at most five.
  std::vector<NotchDeckRules::Ancestor> ancestors(std::int32_t pid) const;

 private:
  bool terminate(const NotchProcessIdentity& identity) const;
  void terminateSupervisors(std::int32_t pid) const;

  const ProcessReader& processes_;
  AppControl& control_;
  const PortInspector& ports_;
  Self self_;
  Wait wait_;
};

}  // namespace lumenary
