#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "monitoring/ProcessInspector.h"
#include "platform/AppControl.h"
#include "platform/ProcessReader.h"

namespace lumenary {

/// Tools for a machine that is short of memory. It frees nothing that it can't free. One thread owns it.
class MemoryOptimizer {
 public:
  /// Runs work elsewhere, then `done` with its answer on the owner's thread.
  using Background = std::function<void(std::function<bool()> work, std::function<void(bool)> done)>;

  /// `ownPath` is the program's own app path, empty where it has none.
  MemoryOptimizer(AppControl& control, const ProcessReader& reader, std::string ownPath, Background background);
  /// No app stays slowed down after the program is gone.
  ~MemoryOptimizer() { restoreAll(); }
  MemoryOptimizer(const MemoryOptimizer&) = delete;
  MemoryOptimizer& operator=(const MemoryOptimizer&) = delete;

  bool isOn = false;
  std::map<std::string, std::vector<std::int32_t>> lowered{};  ///< by the app's path: its processes at low priority
  bool isPurging = false;
  std::optional<std::string> message{};
  std::function<std::vector<AppMemoryUsage>()> processes = [] { return std::vector<AppMemoryUsage>(); };

  /// Low priority for every app but the one in front, or full speed for all of them.
  void setOn(bool isWanted);
  /// Nothing happens while it is off, for the program itself, and for an app that is low already or isn't known.
  void lower(const std::string& bundlePath);
  void restoreAll();

  /// The person turned to an app, or away from it.
  void appBecameActive(const std::string& bundlePath);
  void appStoppedBeingActive(const std::string& bundlePath) { lower(bundlePath); }

  /// Asks the system to drop what its memory holds of files; the system asks for a password. Not while it runs.
  void purgeFileCache();

  /// The path of a running Chrome, as of these running apps.
  static std::optional<std::string> chromeURL(const std::vector<RunningApp>& running);
  /// Opens Chrome's own memory settings with a running Chrome; nothing happens without.
  void openChromeMemorySaver(const std::vector<RunningApp>& running);

 private:
  AppControl& control_;
  const ProcessReader& reader_;
  std::string ownPath_;
  Background background_;
};

}  // namespace lumenary
