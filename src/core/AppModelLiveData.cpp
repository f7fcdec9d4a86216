#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>

#include "core/AppModel.h"
#include "monitoring/NotchProcessActions.h"
#include "monitoring/SystemHistory.h"

// What runs: the passes of the monitoring, and quitting an app.

namespace lumenary {
namespace {

constexpr std::size_t listedProcesses = 80;
constexpr std::chrono::seconds portsInterval{300};
constexpr std::chrono::seconds autoTidyInterval{1800};

/// A time stamp that may have come from a clock that was ahead counts as past.
bool isPast(Date date, Date now, std::chrono::seconds interval) {
  return date == Date::min() || now - date >= interval || date > now;
}

/// Waits for the time, or for a stop request; false then.
bool waitUnlessStopped(std::chrono::milliseconds time, const std::stop_token& stop) {
  std::mutex lock;
  std::condition_variable_any never;
  std::unique_lock held(lock);
  never.wait_for(held, stop, time, [] { return false; });
  return !stop.stop_requested();
}

}  // namespace

/// A pass can't fail as a whole: what can't be read is missing.
Task<> AppModel::performMonitoringPass(MonitoringDemand demand) {
  volumeSnapshot.setIfChanged(capture(*selectedDrive));
  recordDiskSample();
  recordMetrics();
  if (demand.samplesProcesses) {
    co_await sampleProcesses();
  }
  if (demand.samplesPorts || isPast(lastPortSample_, now(), portsInterval)) {
    co_await samplePorts();
  }
  if (isPast(lastAutoTidyConsideration_, now(), autoTidyInterval)) {
    lastAutoTidyConsideration_ = now();
    co_await considerAutoTidy();
  }
}

void AppModel::recordMetrics() {
  const SystemSnapshot reading = metrics_.capture(now());
  systemHistory.change([&](auto& history) { SystemHistory::append(history, reading); });
  activityHistory.set(SystemHistory::chartSamples(*systemHistory));
}

Task<> AppModel::sampleProcesses() {
  struct Sampled {
    std::vector<ProcessSnapshot> processes;
    std::vector<AppMemoryUsage> apps;
  };
  auto sampled = co_await scheduler_.start(Lane::interactive, [engine = engine_, date = now()](const std::stop_token&) {
    return Sampled{.processes = engine->processInspector.snapshots(listedProcesses, date),
                   .apps = engine->processInspector.appUsage(date)};
  });
  processes.setIfChanged(std::move(sampled.processes));
  appMemory.setIfChanged(std::move(sampled.apps));
  hasProcessSample.setIfChanged(true);
}

Task<> AppModel::samplePorts() {
  lastPortSample_ = now();
  ports.setIfChanged(co_await scheduler_.start(Lane::utility, [engine = engine_, date = now()](const std::stop_token&) {
    return engine->portInspector.listeningPorts(date);
  }));
  hasPortSample.setIfChanged(true);
}

Task<std::optional<std::string>> AppModel::quitAndConfirm(AppMemoryUsage usage) {
  auto failure = co_await scheduler_.start(
      Lane::interactive, [engine = engine_, usage = std::move(usage)](const std::stop_token& stop) {
        const Platform& platform = engine->platform;
        const NotchProcessActions actions(
            *platform.processes, *platform.appControl, engine->portInspector,
            {.uid = platform.places.userID, .pid = platform.processID},
            [&stop](std::chrono::milliseconds time) { return waitUnlessStopped(time, stop); });
        return actions.quitAndConfirm(engine->processInspector, usage);
      });
  monitoring_.restart();
  co_return failure;
}

}  // namespace lumenary
