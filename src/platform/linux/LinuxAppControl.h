#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/AppControl.h"
#include "platform/AppRegistry.h"
#include "platform/ProcessReader.h"
#include "platform/ToolRunner.h"
#include "platform/linux/PatientAnswer.h"

namespace lumenary {

/// Signals go through a handle on the process (pidfd), windows are closed by the X11 display's window manager.
///
/// Low priority is a weight of the unit that the desktop started the app in: all processes of the app have it, and it
/// can be taken back. Raising the priority of a single process again needs a privilege that most people don't have, so
/// without such a unit a process is only lowered where it could be raised.
class LinuxAppControl final : public AppControl {
 public:
  /// `display` as in $DISPLAY, empty where there is none.
  LinuxAppControl(const ToolRunner& tools, const ProcessReader& processes, const AppRegistry& apps, std::string display,
                  std::chrono::milliseconds patience = std::chrono::seconds(1));

  bool terminate(std::int32_t pid, const std::function<bool()>& isMeant) override;
  bool requestQuit(std::int32_t pid, const std::function<bool()>& isMeant) override;
  bool lowerPriority(std::int32_t pid) override;
  void restorePriority(std::int32_t pid) override;
  std::optional<std::int32_t> frontProcess() override;
  bool emptyFileCache() override;
  bool open(const std::string& appPath, const std::string& address) override;

  /// The unit of the person's own service manager that a line of /proc/PID/cgroup puts a desktop app in; empty where it
  /// is in none.
  static std::string appUnit(std::string_view controlGroups);

 private:
  struct Lowered {
    Date startedAt{};
    std::string unit{};                                ///< empty where the threads were lowered one by one
    std::vector<std::pair<std::int32_t, int>> nice{};  ///< of each thread before
  };

  bool setWeight(const std::string& unit, const std::string& weight) const;
  static std::vector<std::pair<std::int32_t, int>> lowerThreads(std::int32_t pid);

  const ToolRunner& tools_;
  const ProcessReader& processes_;
  const AppRegistry& apps_;
  std::string display_;
  PatientAnswer<bool> closing_;
  PatientAnswer<std::optional<std::int32_t>> front_;
  std::mutex lock_;
  std::map<std::int32_t, Lowered> lowered_;
};

}  // namespace lumenary
