#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Date.h"
#include "platform/AppControl.h"
#include "platform/ProcessReader.h"

/// What uses memory and processor time, by app.
namespace lumenary {

struct ProcessSnapshot {
  std::int32_t pid = 0;
  std::string name{};
  double cpuPercent = 0;  ///< 0 to 100
  std::uint64_t memoryBytes = 0;
  std::string user{};
  std::string executablePath{};

  bool operator==(const ProcessSnapshot&) const = default;
};

/// All processes of one app, or all that belong to none ("background").
struct AppMemoryUsage {
  std::string key{};
  std::string name{};
  std::optional<std::string> bundlePath{};  ///< the app's own path
  std::uint64_t memoryBytes = 0;
  std::int64_t processCount = 0;
  double cpuPercent = 0;  ///< of one processor; more than 100 where it uses several
  std::optional<std::int32_t> mainPID{};
  std::vector<std::int32_t> pids{};

  bool operator==(const AppMemoryUsage&) const = default;
};

/// Samples of processes. All operations may be called from any thread; a sample waits for the one before it.
class ProcessInspector {
 public:
  struct RunningAppPath {
    std::string path;
    std::optional<std::string> name{};

    bool operator==(const RunningAppPath&) const = default;
  };

  struct AppGroup {
    std::string key;
    std::string name;
    std::optional<std::string> bundle{};

    bool operator==(const AppGroup&) const = default;
  };

  /// `user` is the name of the person who runs this.
  ProcessInspector(ProcessReader& reader, AppControl& control, std::string user);

  /// Every process by the app it belongs to, the largest first. CPU is told since the call before. Two calls with the
  /// same `now`, of this and `snapshots`, share one sample.
  std::vector<AppMemoryUsage> appUsage(Date now);
  /// The apps that run, the busiest first, at most `limit`.
  std::vector<ProcessSnapshot> snapshots(std::size_t limit, Date now);

  /// The apps with windows that run.
  std::vector<RunningApp> runningApps(Date now);
  /// The command lines of all processes that can be seen, one a line.
  std::string commandLines(Date now);

  /// Asks an app to quit; its processes to end, where the app itself can't be asked. True if anything was asked.
  bool quit(const AppMemoryUsage& usage);

  /// Which line of the list a process counts in, by the path that tells its app.
  static AppGroup appGroup(std::string_view executablePath, std::span<const RunningAppPath> running);

 private:
  struct CPUReading {
    std::uint64_t nanoseconds = 0;
    Date capturedAt{};
  };
  using Readings = std::map<std::int32_t, CPUReading>;

  static double cpuPercent(const Readings& before, std::int32_t pid, const CPUReading& now);
  const ProcessReader::Sample& sampleAt(Date now);

  ProcessReader& reader_;
  AppControl& control_;
  std::string user_;
  std::mutex lock_;
  Readings previousCPU_;
  Readings previousAppCPU_;
  std::optional<ProcessReader::Sample> last_;
  Date lastAt_{};
};

}  // namespace lumenary
