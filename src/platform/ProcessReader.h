#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/Date.h"

/// What runs. Whoever holds only a reader can't end anything.
namespace lumenary {

/// What tells a process from any other of the same id, and whose child it is.
struct ProcessRecord {
  std::int32_t pid = 0;
  std::int32_t parent = 0;
  std::uint32_t uid = 0;  ///< as whom it acts
  /// Equal for the same process within one run of this program; a clock that is set doesn't change it.
  Date startedAt{};

  bool operator==(const ProcessRecord&) const = default;
};

struct NamedProcess {
  ProcessRecord record;
  /// As it calls itself; the whole name of its program where the kernel has only the beginning. May be empty.
  std::string name;

  bool operator==(const NamedProcess&) const = default;
};

struct ProcessUsage {
  std::int32_t pid = 0;
  std::uint64_t cpuNanoseconds = 0;  ///< since its start
  std::uint64_t footprintBytes = 0;  ///< memory that would be free without it, swapped out or not
  std::uint64_t residentBytes = 0;   ///< memory it has now, shared or not
  /// Tells the app it belongs to: the app's own path (RegisteredApp::path), else that of the file it runs; empty where
  /// neither can be seen.
  std::string appPath{};

  bool operator==(const ProcessUsage&) const = default;
};

/// An app with windows that runs.
struct RunningApp {
  std::int32_t pid = 0;  ///< of its first process
  std::string path{};    ///< RegisteredApp::path
  std::string id{};      ///< RegisteredApp::id
  std::string name{};

  bool operator==(const RunningApp&) const = default;
};

/// Any process may end between two calls: what can't be read is missing. Names and arguments are bytes that the process
/// chose. All operations but `sample` may be called from any thread.
class ProcessReader {
 public:
  virtual ~ProcessReader() = default;

  struct Sample {
    std::vector<ProcessUsage> processes;  ///< all that can be read, by id
    std::vector<RunningApp> apps;         ///< by the id of their process
  };
  /// One caller at a time; what doesn't change is kept until the next one.
  virtual Sample sample() = 0;
  /// Apps came or went: the next sample asks for them anew. From any thread.
  virtual void appsChanged() = 0;

  virtual std::optional<ProcessRecord> record(std::int32_t pid) const = 0;
  /// The same with its name.
  virtual std::optional<NamedProcess> namedRecord(std::int32_t pid) const = 0;
  /// The file it runs; none where that can't be seen or was removed.
  virtual std::optional<std::string> executablePath(std::int32_t pid) const = 0;
  /// `ProcessUsage::appPath` as of now.
  virtual std::string appPath(std::int32_t pid) const = 0;
  /// None where that can't be seen or was removed.
  virtual std::optional<std::string> workingFolder(std::int32_t pid) const = 0;
  /// The first arguments, at most `limit` bytes of them; empty where they can't be seen.
  virtual std::vector<std::string> arguments(std::int32_t pid, std::size_t limit) const = 0;
};

}  // namespace lumenary
