#include "core/MonitoringCoordinator.h"

#include <utility>

namespace lumenary {

void MonitoringCoordinator::start() {
  if (!isRunning_) {
    isRunning_ = true;
    restart();
  }
}

void MonitoringCoordinator::stop() {
  isRunning_ = false;
  sleeper_.wake();
}

void MonitoringCoordinator::set(MonitoringSurface surface, bool active) {
  const MonitoringDemand before = MonitoringDemand::resolve(surfaces_);
  if (active) {
    surfaces_.insert(surface);
  } else {
    surfaces_.erase(surface);
  }
  if (MonitoringDemand::resolve(surfaces_) != before) {
    restart(settlingTime);
  }
}

void MonitoringCoordinator::restart(Executor::Duration after) {
  if (!isRunning_) {
    return;
  }
  nextDelay_ = after;
  sleeper_.wake();
  if (!std::exchange(isLooping_, true)) {
    tasks_.spawn(loop());
  }
}

Task<> MonitoringCoordinator::loop() {
  while (isRunning_) {
    const Executor::Duration interval = MonitoringDemand::resolve(surfaces_).interval;
    co_await sleeper_.sleep(std::exchange(nextDelay_, std::nullopt).value_or(interval));
    if (!isRunning_) {
      break;
    }
    if (nextDelay_) {
      continue;  // a restart replaces the wait
    }
    Task<> pass = sample_(MonitoringDemand::resolve(surfaces_));
    co_await pass;
  }
  isLooping_ = false;
}

}  // namespace lumenary
