#include "monitoring/ProcessInspector.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <unordered_map>
#include <utility>

#include "base/Path.h"
#include "base/StableSort.h"
#include "base/Text.h"

namespace lumenary {
namespace {

constexpr std::string_view bundleExtension = ".app";
constexpr std::string_view emulatorBeginning = "qemu-system-";
constexpr double percentOfOneProcessor = 100;

std::string_view withoutExtension(std::string_view name) {
  const std::string_view extension = pathExtension(name);
  return extension.empty() ? name : name.substr(0, name.size() - extension.size() - 1);
}

/// The bundle that a path of its program speaks of, or nothing.
std::optional<std::string> bundleInPath(std::string_view path) {
  const std::size_t inside = path.find(".app/");
  if (inside != std::string_view::npos) {
    return standardise(path.substr(0, inside + bundleExtension.size()));
  }
  return path.ends_with(bundleExtension) ? std::optional(standardise(path)) : std::nullopt;
}

}  // namespace

ProcessInspector::ProcessInspector(ProcessReader& reader, AppControl& control, std::string user)
    : reader_(reader), control_(control), user_(std::move(user)) {}

ProcessInspector::AppGroup ProcessInspector::appGroup(std::string_view executablePath,
                                                      std::span<const RunningAppPath> running) {
  const RunningAppPath* owner = nullptr;
  for (const RunningAppPath& app : running) {
    if (!app.path.empty() && isSameOrInside(executablePath, app.path) &&
        (owner == nullptr || app.path.size() > owner->path.size())) {
      owner = &app;
    }
  }
  if (owner != nullptr) {
    const std::string_view file = lastPathComponent(owner->path);
    std::string name = owner->name.value_or(std::string(withoutExtension(file)));
    return {.key = owner->path,
            .name = file.starts_with(emulatorBeginning) ? "Android Emulator" : std::move(name),
            .bundle = owner->path};
  }
  if (const std::optional<std::string> bundle = bundleInPath(executablePath)) {
    return {.key = *bundle, .name = std::string(withoutExtension(lastPathComponent(*bundle))), .bundle = bundle};
  }
  return {.key = "background", .name = "macOS & background"};
}

double ProcessInspector::cpuPercent(const Readings& before, std::int32_t pid, const CPUReading& now) {
  const auto found = before.find(pid);
  if (found == before.end() || found->second.nanoseconds > now.nanoseconds ||
      found->second.capturedAt >= now.capturedAt) {
    return 0;
  }
  const auto used = std::chrono::duration<double, std::nano>(static_cast<double>(now.nanoseconds) -
                                                             static_cast<double>(found->second.nanoseconds));
  const std::chrono::duration<double, std::nano> elapsed = now.capturedAt - found->second.capturedAt;
  return used / elapsed * percentOfOneProcessor;
}

const ProcessReader::Sample& ProcessInspector::sampleAt(Date now) {
  if (!last_ || lastAt_ != now) {
    last_ = reader_.sample();
    lastAt_ = now;
  }
  return *last_;
}

std::vector<AppMemoryUsage> ProcessInspector::appUsage(Date now) {
  const std::lock_guard guard(lock_);
  const ProcessReader::Sample& sample = sampleAt(now);
  std::vector<RunningAppPath> running;
  std::unordered_map<std::string_view, std::int32_t> mainProcesses;
  for (const RunningApp& app : sample.apps) {
    running.push_back({.path = app.path, .name = app.name});
    mainProcesses.emplace(app.path, app.pid);
  }
  // Hundreds of processes share a few paths.
  std::unordered_map<std::string_view, std::size_t> bucketOfPath;
  std::unordered_map<std::string, std::size_t> bucketOfKey;
  std::vector<AppMemoryUsage> buckets;
  Readings readings;
  for (const ProcessUsage& process : sample.processes) {
    const CPUReading reading{.nanoseconds = process.cpuNanoseconds, .capturedAt = now};
    const auto [known, isNew] = bucketOfPath.try_emplace(process.appPath);
    if (isNew) {
      AppGroup group = appGroup(process.appPath, running);
      const auto [bucket, isFirst] = bucketOfKey.try_emplace(group.key, buckets.size());
      if (isFirst) {
        buckets.push_back({.key = std::move(group.key), .name = displayText(group.name), .bundlePath = group.bundle});
      }
      known->second = bucket->second;
    }
    AppMemoryUsage& bucket = buckets[known->second];
    bucket.memoryBytes += process.footprintBytes;
    ++bucket.processCount;
    bucket.cpuPercent += cpuPercent(previousAppCPU_, process.pid, reading);
    bucket.pids.push_back(process.pid);
    readings.emplace_hint(readings.end(), process.pid, reading);
  }
  previousAppCPU_ = std::move(readings);
  for (AppMemoryUsage& bucket : buckets) {
    const auto found = mainProcesses.find(bucket.bundlePath.value_or(""));
    if (found != mainProcesses.end()) {
      bucket.mainPID = found->second;
    }
  }
  return stableSorted(std::move(buckets), [](const AppMemoryUsage& usage) { return ~usage.memoryBytes; });
}

std::vector<ProcessSnapshot> ProcessInspector::snapshots(std::size_t limit, Date now) {
  const std::lock_guard guard(lock_);
  const ProcessReader::Sample& sample = sampleAt(now);
  std::vector<ProcessSnapshot> list;
  Readings readings;
  for (const RunningApp& app : sample.apps) {
    const auto process = std::ranges::find(sample.processes, app.pid, &ProcessUsage::pid);
    if (process == sample.processes.end()) {
      continue;
    }
    const CPUReading reading{.nanoseconds = process->cpuNanoseconds, .capturedAt = now};
    ProcessSnapshot snapshot;
    snapshot.pid = app.pid;
    snapshot.cpuPercent = std::min(cpuPercent(previousCPU_, app.pid, reading), percentOfOneProcessor);
    snapshot.memoryBytes = process->residentBytes;
    const std::string otherwise = app.path.empty() ? "Unavailable" : app.path;
    snapshot.executablePath = reader_.executablePath(app.pid).value_or(otherwise);
    snapshot.name = displayText(app.name.empty() ? lastPathComponent(snapshot.executablePath) : app.name);
    snapshot.user = user_;
    readings.emplace(app.pid, reading);
    list.push_back(std::move(snapshot));
  }
  previousCPU_ = std::move(readings);
  const auto busiest = [](const ProcessSnapshot& snapshot) {
    return std::pair(-snapshot.cpuPercent, ~snapshot.memoryBytes);
  };
  list = stableSorted(std::move(list), busiest);
  list.resize(std::min(limit, list.size()));
  return list;
}

std::vector<RunningApp> ProcessInspector::runningApps(Date now) {
  const std::lock_guard guard(lock_);
  return sampleAt(now).apps;
}

std::string ProcessInspector::commandLines(Date now) {
  constexpr std::size_t longest = 16 * 1024;
  const std::lock_guard guard(lock_);
  std::string lines;
  for (const ProcessUsage& process : sampleAt(now).processes) {
    std::string line;
    for (const std::string& argument : reader_.arguments(process.pid, longest)) {
      line.append(line.empty() ? "" : " ").append(argument);
    }
    std::ranges::replace(line, '\n', ' ');
    lines += line + "\n";
  }
  return lines;
}

bool ProcessInspector::quit(const AppMemoryUsage& usage) {
  const std::string bundle = usage.bundlePath.value_or("");
  const auto belongs = [&](std::int32_t pid) { return isSameOrInside(reader_.appPath(pid), bundle); };
  if (usage.mainPID && !bundle.empty() && belongs(*usage.mainPID)) {
    return control_.requestQuit(*usage.mainPID, [&] { return belongs(*usage.mainPID); });
  }
  if (bundle.empty()) {
    return false;
  }
  bool isAsked = false;
  for (const std::int32_t pid : usage.pids) {
    isAsked = control_.terminate(pid, [&] { return belongs(pid); }) || isAsked;
  }
  return isAsked;
}

}  // namespace lumenary
