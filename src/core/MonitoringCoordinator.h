#pragma once

#include <functional>
#include <optional>

#include "core/async/Sleeper.h"
#include "core/async/Task.h"
#include "core/async/TaskScope.h"
#include "monitoring/MonitoringDemand.h"
#include "platform/Executor.h"

namespace lumenary {

/// Decides when a monitoring pass runs: as often as what is shown asks for, and never two at a time. Between passes
/// nothing runs. Owner's thread only.
class MonitoringCoordinator {
 public:
  using Sample = std::function<Task<>(MonitoringDemand)>;

  /// So that a quick change of rooms costs one pass.
  static constexpr std::chrono::milliseconds settlingTime{450};

  MonitoringCoordinator(Executor& owner, Sample sample) : sample_(std::move(sample)), sleeper_(owner) {}

  /// The first pass follows at once. A second call does nothing.
  void start();
  /// Ends after the pass that runs.
  void stop();

  /// A surface came to be shown, or isn't any more.
  void set(MonitoringSurface surface, bool active);
  /// An early pass, after the one that runs. Nothing happens before `start`.
  void restart(Executor::Duration after = {});

  const MonitoringSurfaces& surfaces() const { return surfaces_; }

 private:
  Task<> loop();

  Sample sample_;
  MonitoringSurfaces surfaces_;
  bool isRunning_ = false;
  bool isLooping_ = false;
  std::optional<Executor::Duration> nextDelay_;
  Sleeper sleeper_;
  TaskScope tasks_;
};

}  // namespace lumenary
