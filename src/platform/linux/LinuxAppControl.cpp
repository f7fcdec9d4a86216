#include "platform/linux/LinuxAppControl.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <string_view>

#include "platform/Descriptor.h"
#include "platform/linux/ProcText.h"
#include "platform/linux/ProcessFiles.h"
#include "platform/linux/X11Windows.h"

namespace lumenary {
namespace {

constexpr int lowestPriority = 19;
constexpr std::string_view lowWeight = "10";  ///< the usual is 100
constexpr std::chrono::minutes forAPassword{5};

Descriptor handleOn(std::int32_t pid) { return Descriptor(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0))); }

/// A process that this program must not ask anything: the first one, and itself.
bool isOutOfReach(std::int32_t pid) { return pid < 2 || pid == ::getpid(); }

/// A priority of 0 can be had again: the limit counts from 20 downwards.
bool mayRaiseAgain() {
  rlimit limit{};
  ::getrlimit(RLIMIT_NICE, &limit);
  constexpr rlim_t usual = 20;
  return ::geteuid() == 0 || limit.rlim_cur >= usual;
}

std::string readProcessFile(std::int32_t pid, const char* file) {
  std::array<char, 4096> buffer{};
  const Descriptor opened(::open(("/proc/" + std::to_string(pid) + "/" + file).c_str(), O_RDONLY | O_CLOEXEC));
  return opened ? std::string(readFromStart(opened.number(), buffer)) : std::string();
}

}  // namespace

LinuxAppControl::LinuxAppControl(const ToolRunner& tools, const ProcessReader& processes, const AppRegistry& apps,
                                 std::string display, std::chrono::milliseconds patience)
    : tools_(tools),
      processes_(processes),
      apps_(apps),
      display_(std::move(display)),
      closing_(patience),
      front_(patience) {}

bool LinuxAppControl::terminate(std::int32_t pid, const std::function<bool()>& isMeant) {
  if (isOutOfReach(pid)) {
    return false;
  }
  const Descriptor process = handleOn(pid);
  return process && isMeant() && ::syscall(SYS_pidfd_send_signal, process.number(), SIGTERM, nullptr, 0) == 0;
}

bool LinuxAppControl::requestQuit(std::int32_t pid, const std::function<bool()>& isMeant) {
  if (isOutOfReach(pid) || !isMeant()) {
    return false;
  }
  if (!display_.empty()) {
    const auto close = [display = display_, pid] { return closeWindowsOf(display, pid); };
    // A display that doesn't answer may still come to close the windows, so the process isn't asked as well.
    const std::optional<bool> isClosing = closing_.ask(close);
    if (!isClosing || *isClosing) {
      return isClosing.value_or(false);
    }
  }
  return terminate(pid, isMeant);
}

std::string LinuxAppControl::appUnit(std::string_view controlGroups) {
  while (!controlGroups.empty()) {
    std::string_view path = takeLine(controlGroups);
    while (!path.empty()) {
      const std::size_t slash = path.rfind('/');
      const std::string_view unit = slash == std::string_view::npos ? std::string_view() : path.substr(slash + 1);
      if (!appIDOfControlGroup("0::/" + std::string(unit)).empty()) {
        return std::string(unit);
      }
      path = path.substr(0, slash == std::string_view::npos ? 0 : slash);
    }
  }
  return {};
}

bool LinuxAppControl::setWeight(const std::string& unit, const std::string& weight) const {
  const auto result = tools_.run(
      {.path = "/usr/bin/systemctl",
       .arguments = {"--user", "set-property", "--runtime", "--", unit, "CPUWeight=" + weight, "IOWeight=" + weight}});
  return result && result->status == 0;
}

std::vector<std::pair<std::int32_t, int>> LinuxAppControl::lowerThreads(std::int32_t pid) {
  std::vector<std::pair<std::int32_t, int>> before;
  const std::unique_ptr<DIR, decltype([](DIR* folder) { ::closedir(folder); })> threads(
      ::opendir(("/proc/" + std::to_string(pid) + "/task").c_str()));
  while (const dirent* const entry = threads ? ::readdir(threads.get()) : nullptr) {
    const auto thread = numberAtFront<std::int32_t>(entry->d_name);
    if (thread <= 0) {
      continue;
    }
    errno = 0;
    const int nice = ::getpriority(PRIO_PROCESS, static_cast<id_t>(thread));
    if (errno == 0 && ::setpriority(PRIO_PROCESS, static_cast<id_t>(thread), lowestPriority) == 0) {
      before.emplace_back(thread, nice);
    }
  }
  return before;
}

bool LinuxAppControl::lowerPriority(std::int32_t pid) {
  const auto record = isOutOfReach(pid) ? std::nullopt : processes_.record(pid);
  if (!record) {
    return false;
  }
  const std::lock_guard guard(lock_);
  Lowered lowered{.startedAt = record->startedAt, .unit = appUnit(readProcessFile(pid, "cgroup"))};
  const bool isUnitLow = std::ranges::any_of(
      lowered_, [&](const auto& other) { return !lowered.unit.empty() && other.second.unit == lowered.unit; });
  if (!isUnitLow && !lowered.unit.empty() && !setWeight(lowered.unit, std::string(lowWeight))) {
    lowered.unit.clear();
  }
  if (lowered.unit.empty() && mayRaiseAgain()) {
    lowered.nice = lowerThreads(pid);
  }
  const bool isLow = !lowered.unit.empty() || !lowered.nice.empty();
  if (isLow) {
    lowered_.insert_or_assign(pid, std::move(lowered));
  }
  return isLow;
}

void LinuxAppControl::restorePriority(std::int32_t pid) {
  const std::lock_guard guard(lock_);
  const auto found = lowered_.find(pid);
  if (found == lowered_.end()) {
    return;
  }
  const Lowered lowered = std::move(found->second);
  lowered_.erase(found);
  if (!lowered.unit.empty()) {
    const bool isLast =
        std::ranges::none_of(lowered_, [&](const auto& other) { return other.second.unit == lowered.unit; });
    if (isLast) {
      setWeight(lowered.unit, "");
    }
    return;
  }
  const auto record = processes_.record(pid);
  if (record && record->startedAt == lowered.startedAt) {
    for (const auto& [thread, nice] : lowered.nice) {
      ::setpriority(PRIO_PROCESS, static_cast<id_t>(thread), nice);
    }
  }
}

std::optional<std::int32_t> LinuxAppControl::frontProcess() {
  if (display_.empty()) {
    return std::nullopt;
  }
  return front_.ask([display = display_] { return frontWindowProcess(display); }).value_or(std::nullopt);
}

bool LinuxAppControl::emptyFileCache() {
  const auto result = tools_.run({.path = "/usr/bin/pkexec",
                                  .arguments = {"/usr/sbin/sysctl", "-q", "-w", "vm.drop_caches=1"},
                                  .timeLimit = forAPassword});
  return result && result->status == 0;
}

bool LinuxAppControl::open(const std::string& appPath, const std::string& address) {
  const std::vector<RegisteredApp> apps = apps_.apps();
  const auto app = std::ranges::find(apps, appPath, &RegisteredApp::path);
  if (app == apps.end()) {
    return false;
  }
  std::vector<std::string> addresses;
  if (!address.empty()) {
    addresses.push_back(address);
  }
  const auto start = [&](const std::string& tool, std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), addresses.begin(), addresses.end());
    return tools_.start({.path = tool, .arguments = std::move(arguments)});
  };
  switch (app->origin) {
    case AppOrigin::flatpak:
      return start("/usr/bin/flatpak", {"run", app->id});
    case AppOrigin::snap:
      return start("/usr/bin/snap", {"run", app->id});
    case AppOrigin::desktopEntry:
      // An entry may start its program with arguments of its own.
      if (address.empty() && start("/usr/bin/gio", {"launch", app->path})) {
        return true;
      }
      break;
    case AppOrigin::bundle:
    case AppOrigin::appImage:
      break;
  }
  return !app->program.empty() && start(app->program, {});
}

}  // namespace lumenary
