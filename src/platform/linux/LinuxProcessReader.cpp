#include "platform/linux/LinuxProcessReader.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <map>
#include <utility>

#include "base/Path.h"
#include "platform/linux/ProcText.h"

namespace lumenary {
namespace {

/// A desktop moves an app into a unit of its own shortly after starting it.
constexpr std::uint64_t settlingSeconds = 10;
constexpr std::size_t longestName = 15;  ///< that the kernel keeps
constexpr std::string_view removedSuffix = " (deleted)";

/// "PID/file" below /proc.
class ProcessPath {
 public:
  ProcessPath(std::int32_t pid, const char* file) {
    char* const end = std::to_chars(text_.data(), text_.data() + text_.size(), pid).ptr;
    *end = '/';
    const std::string_view name = file;
    *std::ranges::copy(name.substr(0, longestFile), end + 1).out = '\0';
  }
  const char* text() const { return text_.data(); }

 private:
  static constexpr std::size_t longestFile = 16;
  std::array<char, 32> text_{};
};

std::optional<std::string> readLink(const Descriptor& processes, std::int32_t pid, const char* file) {
  std::array<char, 4096> target{};
  const ssize_t length = ::readlinkat(processes.number(), ProcessPath(pid, file).text(), target.data(), target.size());
  if (length <= 0 || static_cast<std::size_t>(length) >= target.size()) {
    return std::nullopt;
  }
  std::string path(target.data(), static_cast<std::size_t>(length));
  return path.starts_with('/') ? std::optional(std::move(path)) : std::nullopt;
}

std::optional<std::string> readLinkOfStanding(const Descriptor& processes, std::int32_t pid, const char* file) {
  std::optional<std::string> path = readLink(processes, pid, file);
  return path && path->ends_with(removedSuffix) ? std::nullopt : path;
}

Descriptor openFile(const Descriptor& processes, std::int32_t pid, const char* file) {
  return Descriptor(::openat(processes.number(), ProcessPath(pid, file).text(), O_RDONLY | O_CLOEXEC));
}

std::uint64_t secondsSinceStart() {
  timespec now{};
  ::clock_gettime(CLOCK_BOOTTIME, &now);
  return static_cast<std::uint64_t>(now.tv_sec);
}

Date startOfMachine() {
  timespec since{};
  ::clock_gettime(CLOCK_BOOTTIME, &since);
  return std::chrono::floor<Date::duration>(std::chrono::system_clock::now() - std::chrono::seconds(since.tv_sec) -
                                            std::chrono::nanoseconds(since.tv_nsec));
}

}  // namespace

std::size_t LinuxProcessReader::usualDescriptorLimit() {
  rlimit limit{};
  ::getrlimit(RLIMIT_NOFILE, &limit);
  constexpr rlim_t most = 32768;
  return std::min(limit.rlim_cur, most) / 2;
}

LinuxProcessReader::LinuxProcessReader(const AppRegistry& apps, std::size_t descriptorLimit)
    : registry_(apps),
      descriptorLimit_(descriptorLimit),
      processes_(::open("/proc", O_RDONLY | O_DIRECTORY | O_CLOEXEC)),
      ticksPerSecond_(static_cast<std::uint64_t>(std::max(::sysconf(_SC_CLK_TCK), 1L))),
      pageBytes_(static_cast<std::uint64_t>(std::max(::sysconf(_SC_PAGESIZE), 0L))),
      startOfMachine_(startOfMachine()) {}

void LinuxProcessReader::askForApps() {
  if (!mustAskForApps_.exchange(false)) {
    return;
  }
  auto apps = std::make_shared<const AppAttribution>(registry_.apps());
  for (auto& [pid, known] : known_) {
    known.isPlaced = false;
    known.app = nullptr;
  }
  const std::lock_guard guard(appsLock_);
  apps_ = std::move(apps);
}

std::shared_ptr<const AppAttribution> LinuxProcessReader::knownApps() const {
  const std::lock_guard guard(appsLock_);
  return apps_;
}

std::vector<std::int32_t> LinuxProcessReader::processIDs() {
  std::vector<std::int32_t> ids;
  ids.reserve(known_.size() + 64);
  alignas(dirent64) std::array<char, 32 * 1024> buffer{};
  ::lseek(processes_.number(), 0, SEEK_SET);
  for (;;) {
    const long count = ::syscall(SYS_getdents64, processes_.number(), buffer.data(), buffer.size());
    if (count <= 0) {
      return ids;
    }
    for (long at = 0; at < count;) {
      const auto* const entry = reinterpret_cast<const dirent64*>(buffer.data() + at);
      if (const auto pid = numberAtFront<std::int32_t>(entry->d_name); pid > 0) {
        ids.push_back(pid);
      }
      at += entry->d_reclen;
    }
  }
}

std::string_view LinuxProcessReader::text(std::int32_t pid, const char* file, Descriptor& kept, bool mayKeep,
                                          std::span<char> buffer) {
  if (kept) {
    return readFromStart(kept.number(), buffer);
  }
  Descriptor opened = openFile(processes_, pid, file);
  const std::string_view read = opened ? readFromStart(opened.number(), buffer) : std::string_view();
  if (!read.empty() && mayKeep && openDescriptors_ < descriptorLimit_) {
    kept = std::move(opened);
    ++openDescriptors_;
  }
  return read;
}

ProcessReader::Sample LinuxProcessReader::sample() {
  askForApps();
  Sample sample;
  const std::vector<std::int32_t> ids = processIDs();
  sample.processes.reserve(ids.size());
  const std::uint64_t nowTicks = secondsSinceStart() * ticksPerSecond_;
  for (const std::int32_t pid : ids) {
    Known& known = known_[pid];
    known.isSeen = refresh(pid, known, nowTicks, sample);
  }
  for (auto at = known_.begin(); at != known_.end();) {
    if (std::exchange(at->second.isSeen, false)) {
      ++at;
    } else {
      openDescriptors_ -= at->second.openDescriptors();
      at = known_.erase(at);
    }
  }

  // The first process of an app is the one that started first; by id, which may have begun anew, only among equals.
  // What was started in an app (a server, a shell) stays in its control group when the app has gone: it isn't the app.
  std::map<const RegisteredApp*, std::pair<std::uint64_t, std::int32_t>> first;
  for (const auto& [pid, known] : known_) {
    if (known.app != nullptr && known.isOfAppItself) {
      const std::pair candidate(known.startTicks, pid);
      const auto [at, isNew] = first.emplace(known.app, candidate);
      at->second = std::min(at->second, candidate);
    }
  }
  for (const auto& [app, process] : first) {
    sample.apps.push_back({.pid = process.second, .path = app->path, .id = app->id, .name = app->name});
  }
  std::ranges::sort(sample.apps, {}, &RunningApp::pid);
  for (ProcessUsage& usage : sample.processes) {
    const Known& known = known_.at(usage.pid);
    usage.appPath = first.contains(known.app) ? known.app->path : known.executable;
  }
  return sample;
}

/// False for a process that is gone.
bool LinuxProcessReader::refresh(std::int32_t pid, Known& known, std::uint64_t nowTicks, Sample& sample) {
  std::array<char, 4096> buffer{};
  std::optional<ProcessStat> stat = parseProcessStat(text(pid, "stat", known.stat, true, buffer));
  if (!stat && known.stat) {
    // The descriptor is of a process that ended, and its number may be another's by now.
    openDescriptors_ -= known.openDescriptors();
    known = Known();
    stat = parseProcessStat(text(pid, "stat", known.stat, true, buffer));
  }
  if (!stat || stat->hasEnded()) {
    return false;
  }
  if (stat->startTicks != known.startTicks || stat->name != known.name) {
    known.startTicks = stat->startTicks;
    known.name = stat->name;
    known.isPlaced = false;
    known.faults = 0;
  }
  ProcessUsage usage{.pid = pid};
  constexpr std::uint64_t nanosecondsPerSecond = 1'000'000'000;
  usage.cpuNanoseconds = stat->cpuTicks * (nanosecondsPerSecond / ticksPerSecond_);
  usage.residentBytes = stat->residentPages * pageBytes_;
  const bool isSame = known.faults == stat->faults && known.virtualBytes == stat->virtualBytes &&
                      known.residentPages == stat->residentPages && stat->faults != 0;
  if (!isSame && !stat->isKernelThread()) {
    known.faults = stat->faults;
    known.virtualBytes = stat->virtualBytes;
    known.residentPages = stat->residentPages;
    // Without the other one, nothing would tell that this one is of a process that ended.
    const bool isKept = static_cast<bool>(known.stat);
    const auto status = parseProcessStatus(text(pid, "status", known.status, isKept, buffer));
    known.footprintBytes = status ? status->footprintBytes : 0;
  }
  if (!known.isPlaced && !stat->isKernelThread()) {
    place(pid, known);
    known.isPlaced = known.startTicks + (settlingSeconds * ticksPerSecond_) < nowTicks;
  }
  usage.footprintBytes = known.footprintBytes;
  sample.processes.push_back(std::move(usage));
  return true;
}

void LinuxProcessReader::place(std::int32_t pid, Known& known) {
  known.app = appOf(pid, *apps_, known.executable);
  known.isOfAppItself = false;
  if (known.app != nullptr) {
    const bool isConfined = known.app->origin == AppOrigin::flatpak || known.app->origin == AppOrigin::snap;
    const Descriptor stat = openFile(processes_, pid, "stat");
    known.isOfAppItself =
        stat && userOf(pid, stat) == ::geteuid() && (isConfined || apps_->appOf({}, known.executable) == known.app);
  }
}

const RegisteredApp* LinuxProcessReader::appOf(std::int32_t pid, const AppAttribution& apps,
                                               std::string& executable) const {
  executable = readLink(processes_, pid, "exe").value_or("");
  if (executable.ends_with(removedSuffix)) {
    // An update replaced the program while it runs.
    executable.resize(executable.size() - removedSuffix.size());
  }
  std::array<char, 4096> buffer{};
  const Descriptor file = openFile(processes_, pid, "cgroup");
  const std::string_view groups = file ? readFromStart(file.number(), buffer) : std::string_view();
  return apps.appOf(appIDOfControlGroup(groups), executable);
}

std::optional<ProcessRecord> LinuxProcessReader::record(std::int32_t pid) const {
  const auto named = namedRecord(pid);
  return named ? std::optional(named->record) : std::nullopt;
}

std::optional<NamedProcess> LinuxProcessReader::namedRecord(std::int32_t pid) const {
  std::array<char, 4096> buffer{};
  const Descriptor file = openFile(processes_, pid, "stat");
  const auto stat = file ? parseProcessStat(readFromStart(file.number(), buffer)) : std::nullopt;
  if (!stat || stat->hasEnded()) {
    return std::nullopt;
  }
  const auto sinceStart = std::chrono::microseconds(stat->startTicks * (1'000'000 / ticksPerSecond_));
  NamedProcess named{.record = {.pid = pid, .parent = stat->parent, .startedAt = startOfMachine_ + sinceStart},
                     .name = std::string(stat->name)};
  const auto uid = userOf(pid, file);
  if (!uid) {
    return std::nullopt;
  }
  named.record.uid = *uid;
  if (named.name.size() == longestName) {
    const std::string path = executablePath(pid).value_or("");
    const std::string_view program = lastPathComponent(path);
    if (program.starts_with(named.name)) {
      named.name = program;
    }
  }
  return named;
}

/// The files of a process belong to whom it acts as. Those of one that hides what it holds belong to root; then its
/// longer text tells, which takes several times as long to ask for. Root itself may see everything anyway.
std::optional<std::uint32_t> LinuxProcessReader::userOf(std::int32_t pid, const Descriptor& stat) const {
  struct ::stat attributes{};
  if (::fstat(stat.number(), &attributes) == 0 && (attributes.st_uid != 0 || ::geteuid() == 0)) {
    return attributes.st_uid;
  }
  std::array<char, 4096> buffer{};
  const Descriptor file = openFile(processes_, pid, "status");
  const auto status = file ? parseProcessStatus(readFromStart(file.number(), buffer)) : std::nullopt;
  return status ? std::optional(status->uid) : std::nullopt;
}

std::optional<std::string> LinuxProcessReader::executablePath(std::int32_t pid) const {
  return readLinkOfStanding(processes_, pid, "exe");
}

std::string LinuxProcessReader::appPath(std::int32_t pid) const {
  const std::shared_ptr<const AppAttribution> apps = knownApps();
  std::string executable;
  const RegisteredApp* const app = appOf(pid, *apps, executable);
  return app == nullptr ? executable : app->path;
}

std::optional<std::string> LinuxProcessReader::workingFolder(std::int32_t pid) const {
  return readLinkOfStanding(processes_, pid, "cwd");
}

std::vector<std::string> LinuxProcessReader::arguments(std::int32_t pid, std::size_t limit) const {
  const Descriptor file = openFile(processes_, pid, "cmdline");
  std::string text(limit, '\0');
  const std::size_t count = file ? readFromStart(file.number(), text).size() : 0;
  text.resize(count);
  return parseArguments(text);
}

}  // namespace lumenary
