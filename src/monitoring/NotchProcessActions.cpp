#include "monitoring/NotchProcessActions.h"

#include <algorithm>
#include <utility>

#include "base/Path.h"

namespace lumenary {
namespace {

constexpr int mostParents = 5;
constexpr int mostTries = 25;
constexpr std::chrono::milliseconds betweenTries{200};
constexpr std::chrono::seconds untilItMayBeBack{2};
constexpr std::size_t argumentBytes = std::size_t{16} * 1024;

bool isSameServer(const PortEntry& one, const PortEntry& other) {
  return one.pid == other.pid && one.startedAt == other.startedAt && one.ownerUID == other.ownerUID &&
         one.protocolName == other.protocolName && one.address == other.address && one.port == other.port;
}

NotchActionResult failure(std::string title, std::string detail) {
  return {.title = std::move(title), .details = {std::move(detail)}, .failed = true};
}

/// Programs in which a person works: their command lines may name anything, and much else runs in them.
constexpr std::array workplaces = std::to_array<std::string_view>({"sh",
                                                                   "bash",
                                                                   "dash",
                                                                   "zsh",
                                                                   "fish",
                                                                   "ksh",
                                                                   "tmux",
                                                                   "tmux:",
                                                                   "screen",
                                                                   "SCREEN",
                                                                   "zellij",
                                                                   "xterm",
                                                                   "kitty",
                                                                   "alacritty",
                                                                   "konsole",
                                                                   "gnome-terminal-",
                                                                   "gnome-terminal-server",
                                                                   "xfce4-terminal",
                                                                   "foot",
                                                                   "wezterm-gui",
                                                                   "code",
                                                                   "codium",
                                                                   "cursor",
                                                                   "vim",
                                                                   "nvim",
                                                                   "gvim",
                                                                   "emacs",
                                                                   "emacsclient",
                                                                   "sshd",
                                                                   "sshd:",
                                                                   "login",
                                                                   "systemd"});

bool isWorkplace(std::string_view arguments) {
  std::string_view program = arguments.substr(0, arguments.find(' '));
  program.remove_prefix(program.starts_with('-') ? 1 : 0);  // of a login shell
  return std::ranges::find(workplaces, lastPathComponent(program)) != workplaces.end();
}

}  // namespace

std::optional<NotchProcessIdentity> NotchProcessIdentity::capture(const ProcessReader& processes, std::int32_t pid) {
  const auto record = pid < 2 ? std::nullopt : processes.record(pid);
  return record ? std::optional(NotchProcessIdentity{pid, record->uid, record->startedAt}) : std::nullopt;
}

NotchProcessActions::NotchProcessActions(const ProcessReader& processes, AppControl& control,
                                         const PortInspector& ports, Self self, Wait wait)
    : processes_(processes), control_(control), ports_(ports), self_(self), wait_(std::move(wait)) {}

bool NotchProcessActions::canStop(const PortEntry& port, std::uint32_t uid, std::int32_t ownPID) {
  return port.isDevServer() && port.ownerUID == uid && port.startedAt && port.pid > 1 && port.pid != ownPID;
}

NotchActionResult NotchProcessActions::stop(const PortEntry& port) const {
  const auto isStoppable = [&](const PortEntry& entry) { return canStop(entry, self_.uid, self_.pid); };
  const std::vector<PortEntry> now = ports_.inspect();
  const bool stillListens =
      std::ranges::any_of(now, [&](const PortEntry& entry) { return isSameServer(entry, port) && isStoppable(entry); });
  const auto identity = NotchProcessIdentity::capture(processes_, port.pid);
  if (!isStoppable(port) || !stillListens || !identity || identity->uid != port.ownerUID ||
      identity->startedAt != port.startedAt) {
    return failure("Server changed or already stopped", "Refresh the list before trying again.");
  }
  terminateSupervisors(port.pid);
  // It may have ended with the one that watched it.
  if (!terminate(*identity) && NotchProcessIdentity::capture(processes_, port.pid) == identity) {
    return failure("Couldn’t stop the server", "The process did not accept the stop request.");
  }
  const bool hasExited = waitForExit(*identity);
  const auto isTheProcess = [&](const PortEntry& entry) {
    return entry.pid == port.pid && entry.startedAt == port.startedAt;
  };
  if (std::ranges::any_of(ports_.inspect(), isTheProcess)) {
    return failure("Server is still listening", "No force-stop was sent. Open Ports & Projects to inspect it.");
  }
  wait_(untilItMayBeBack);
  const auto isBack = [&](const PortEntry& entry) { return entry.port == port.port && entry.isDevServer(); };
  if (std::ranges::any_of(ports_.inspect(), isBack)) {
    return failure(":" + std::to_string(port.port) + " came back",
                   "Something restarted it. Stop it where it was started.");
  }
  NotchActionResult result{.title = "Server stopped"};
  if (!hasExited) {
    result.details.emplace_back("Its listening ports are closed.");
  }
  return result;
}

void NotchProcessActions::terminateSupervisors(std::int32_t pid) const {
  std::vector<NotchDeckRules::Ancestor> above = ancestors(pid);
  std::erase_if(above, [](const NotchDeckRules::Ancestor& ancestor) { return isWorkplace(ancestor.arguments); });
  std::vector<NotchProcessIdentity> supervisors;
  for (const std::int32_t supervisor : NotchDeckRules::supervisors(above, self_.uid)) {
    const auto identity =
        supervisor == self_.pid ? std::nullopt : NotchProcessIdentity::capture(processes_, supervisor);
    if (identity) {
      supervisors.push_back(*identity);
    }
  }
  // One may have ended and left its number to another since it was looked at. All are looked at before the first is
  // asked: without it, those above it would no longer be.
  const std::vector<NotchDeckRules::Ancestor> stillAbove = ancestors(pid);
  std::erase_if(supervisors, [&](const NotchProcessIdentity& identity) {
    return std::ranges::find(stillAbove, identity.pid, &NotchDeckRules::Ancestor::pid) == stillAbove.end();
  });
  for (const NotchProcessIdentity& identity : supervisors) {
    terminate(identity);
  }
}

bool NotchProcessActions::terminate(const NotchProcessIdentity& identity) const {
  return control_.terminate(identity.pid,
                            [&] { return NotchProcessIdentity::capture(processes_, identity.pid) == identity; });
}

bool NotchProcessActions::requestQuit(const AppMemoryUsage& usage, const NotchProcessIdentity& identity) const {
  if (identity.uid != self_.uid || identity.pid == self_.pid) {
    return false;
  }
  const auto isStillTheApp = [&] {
    return NotchProcessIdentity::capture(processes_, identity.pid) == identity && usage.bundlePath &&
           isSameOrInside(processes_.appPath(identity.pid), *usage.bundlePath);
  };
  return control_.requestQuit(identity.pid, isStillTheApp);
}

NotchActionResult NotchProcessActions::quit(const AppMemoryUsage& usage) const {
  const auto identity = usage.mainPID ? NotchProcessIdentity::capture(processes_, *usage.mainPID) : std::nullopt;
  if (!identity) {
    return {.title = usage.name + " already quit"};
  }
  if (!requestQuit(usage, *identity)) {
    return failure("Couldn’t request quit",
                   "The app changed, already quit, or declined the request. Refresh the list or quit it normally.");
  }
  if (!waitForExit(*identity)) {
    return failure(usage.name + " is still open", "Check for a save prompt. Quit may have been cancelled.");
  }
  return {.title = usage.name + " quit"};
}

NotchActionResult NotchProcessActions::reopen(const NotchQuitApp& app) const {
  const bool isOpening = control_.open(app.path, "");
  return {.title = isOpening ? "" : "Couldn't reopen " + app.name, .failed = !isOpening};
}

std::optional<std::string> NotchProcessActions::quitAndConfirm(ProcessInspector& inspector,
                                                               const AppMemoryUsage& usage) const {
  const std::optional<std::int32_t> pid =
      usage.mainPID || usage.pids.empty() ? usage.mainPID : std::optional(usage.pids.front());
  const auto identity = pid ? NotchProcessIdentity::capture(processes_, *pid) : std::nullopt;
  if (!inspector.quit(usage)) {
    return "It may have closed already, or it declined the request. Try quitting it from the app itself.";
  }
  if (!identity || waitForExit(*identity)) {
    return std::nullopt;
  }
  return "It's still open. Check it for a save prompt, or quit it from the app itself.";
}

bool NotchProcessActions::waitForExit(const NotchProcessIdentity& identity) const {
  for (int attempt = 0; attempt < mostTries; ++attempt) {
    if (NotchProcessIdentity::capture(processes_, identity.pid) != identity) {
      return true;
    }
    if (!wait_(betweenTries)) {
      return false;
    }
  }
  return false;
}

std::vector<NotchDeckRules::Ancestor> NotchProcessActions::ancestors(std::int32_t pid) const {
  std::vector<NotchDeckRules::Ancestor> above;
  auto record = processes_.record(pid);
  while (record && static_cast<int>(above.size()) < mostParents) {
    record = record->parent < 2 ? std::nullopt : processes_.record(record->parent);
    if (record) {
      std::string line;
      for (const std::string& argument : processes_.arguments(record->pid, argumentBytes)) {
        line += (line.empty() ? "" : " ") + argument;
      }
      above.push_back({.pid = record->pid, .uid = record->uid, .arguments = std::move(line)});
    }
  }
  return above;
}

}  // namespace lumenary
