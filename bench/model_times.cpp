// model_times WHAT: measures the application's model on the home of its environment, which it fills: give it an empty
// one. WHAT is
//   store    writes a scan of the startup disk as large as scans get, for the others to find
//   start    from the first line to the stored scan being shown, and until all that follows from it is there
//   day      what a person does on top of that; how long the owner's thread was held at a time
//   pass     monitoring passes, and what the readers alone take
//   engine   the memory that the engine needs for that scan;  model: the same for the model with all that it derives
// Each prints a line of JSON, times in microseconds, memory in bytes.

#include <malloc.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "MadeScan.h"
#include "base/JsonWriter.h"
#include "core/AppModel.h"
#include "platform/linux/LinuxExecutor.h"

namespace {

using namespace lumenary;
using Clock = std::chrono::steady_clock;

std::int64_t microseconds(Clock::duration time) {
  return std::chrono::duration_cast<std::chrono::microseconds>(time).count();
}

/// Notes how long each call keeps the owner's thread.
class TimedExecutor final : public Executor {
 public:
  void post(Call call) override { real_.post(timed(std::move(call))); }
  Instant now() const override { return real_.now(); }
  TimerID callAfter(Duration delay, Call call) override { return real_.callAfter(delay, timed(std::move(call))); }
  void cancelTimer(TimerID timer) override { real_.cancelTimer(timer); }
  void watch(const Descriptor& file, std::function<void()> call) override { real_.watch(file, std::move(call)); }
  void stopWatching(const Descriptor& file) override { real_.stopWatching(file); }

  /// Runs until the condition holds, which is asked after each call.
  void runUntil(std::function<bool()> isReached) {
    isReached_ = std::move(isReached);
    real_.post([this] { stopIfReached(); });
    real_.run();
  }
  std::vector<std::int64_t> takeHolds() { return std::exchange(holds_, {}); }

 private:
  Call timed(Call call) {
    return [this, call = std::move(call)]() mutable {
      const auto began = Clock::now();
      call();
      holds_.push_back(microseconds(Clock::now() - began));
      stopIfReached();
    };
  }
  void stopIfReached() {
    if (isReached_ && isReached_()) {
      isReached_ = {};
      real_.stop();
    }
  }

  LinuxExecutor real_;
  std::function<bool()> isReached_;
  std::vector<std::int64_t> holds_;
};

struct Machine {
  Platform platform = makePlatform();
  TimedExecutor owner;
  ThreadWorkers workers{setThreadPriority};
  Scheduler scheduler{owner, workers};
  ScanStore store{*platform.files, platform.places.support};
};

using Figures = std::vector<std::pair<std::string, std::vector<std::int64_t>>>;

void print(const Figures& figures) {
  JsonWriter json(JsonWriter::Layout::compact);
  json.beginObject();
  for (const auto& [name, values] : figures) {
    json.key(name).beginArray();
    for (const std::int64_t value : values) {
      json.integer(value);
    }
    json.endArray();
  }
  json.endObject();
  std::puts(json.take().c_str());
}

std::vector<std::int64_t> longest(std::vector<std::int64_t> holds, std::size_t count) {
  std::ranges::sort(holds, std::ranges::greater());
  holds.resize(std::min(count, holds.size()));
  return holds;
}

bool hasEverything(const AppModel& model) {
  return *model.closetModel && *model.wardrobeSnapshot && *model.tidyPlan && *model.appInventory &&
         !*model.isLoadingApps;
}

void storeScan() {
  Machine machine;
  StorageScanResult scan = MadeScan::make();
  scan.root = AppModel::macVolumeRoot;
  if (!machine.store.save(scan)) {
    std::fputs("model_times: the scan can't be stored\n", stderr);
    std::exit(1);
  }
}

void start() {
  const auto began = Clock::now();
  Machine machine;
  const auto made = Clock::now();
  AppModel model(machine.platform, machine.store, machine.scheduler, AppModel::Services::all);
  const auto constructed = Clock::now();
  machine.owner.runUntil([&] { return *model.storageResult != nullptr; });
  const auto adopted = Clock::now();
  machine.owner.runUntil([&] { return hasEverything(model); });
  const auto derived = Clock::now();
  print({{"platform", {microseconds(made - began)}},
         {"constructor", {microseconds(constructed - made)}},
         {"adopted", {microseconds(adopted - began)}},
         {"derived", {microseconds(derived - began)}},
         {"holds", longest(machine.owner.takeHolds(), 5)}});
}

/// Runs one flow to its end.
void await(Machine& machine, Task<> task) {
  TaskScope scope;
  scope.spawn(std::move(task));
  machine.owner.runUntil([&] { return scope.isIdle(); });
}

template <class Value>
Task<> ignored(Task<Value> task) {
  co_await task;
}

void makeFile(const std::string& path, std::size_t bytes) {
  std::ofstream(path, std::ios::binary) << std::string(bytes, 'x');
}

void day() {
  constexpr std::size_t fileBytes = std::size_t{2} << 20;
  Machine machine;
  const std::string& home = machine.platform.places.home;
  for (const char* const folder : {"/Documents", "/code", "/code/app", "/code/app/node_modules"}) {
    ::mkdir((home + folder).c_str(), 0700);
  }
  makeFile(home + "/code/app/package.json", 10);
  makeFile(home + "/code/app/node_modules/x.js", fileBytes);
  std::vector<FileEntry> entries;
  for (const char* const name : {"a.mkv", "b.mkv", "c.mkv"}) {
    const std::string path = home + "/Documents/" + name;
    makeFile(path, fileBytes);
    entries.push_back(
        {.id = UUID::random(), .url = {.path = path}, .name = name, .byteCount = fileBytes, .modifiedAt = {}});
  }
  AppModel model(machine.platform, machine.store, machine.scheduler, AppModel::Services::all);
  Figures figures;
  const auto step = [&](const char* name, const std::function<void()>& act) {
    const auto began = Clock::now();
    act();
    const auto took = microseconds(Clock::now() - began);
    std::vector<std::int64_t> row = longest(machine.owner.takeHolds(), 1);
    row.push_back(took);
    figures.emplace_back(name, std::move(row));
  };
  step("start", [&] { machine.owner.runUntil([&] { return hasEverything(model); }); });
  step("move three files",
       [&] { await(machine, ignored(model.removeStorageEntries(entries, CleanupTransaction::Source::storage))); });
  step("undo", [&] { await(machine, ignored(model.undoTrash(model.cleanupTransactions->back().id))); });
  step("redo", [&] { await(machine, model.redoTrash(model.cleanupTransactions->back().id)); });
  step("undo again", [&] { await(machine, ignored(model.undoTrash(model.cleanupTransactions->back().id))); });
  step("find projects", [&] {
    model.scanDeveloperProjects({.path = home + "/code", .isFolder = true});
    machine.owner.runUntil([&] { return !model.projects->empty() && !model.cleanupCandidates->empty(); });
  });
  step("clear build output", [&] { await(machine, ignored(model.clear(false, {}, {}, *model.cleanupCandidates))); });
  step("apps again", [&] { await(machine, model.refreshApps()); });
  step("insights again", [&] { await(machine, model.refreshInsights()); });
  step("a scan of the home", [&] {
    model.scanStorage({.path = home, .isFolder = true});
    machine.owner.runUntil([&] { return !*model.isScanning && *model.closetModel; });
  });
  print(figures);
}

void pass() {
  constexpr std::size_t passes = 200;
  Machine machine;
  AppModel model(machine.platform, machine.store, machine.scheduler, AppModel::Services::all);
  machine.owner.runUntil([&] { return hasEverything(model); });
  MonitoringCoordinator& coordinator = model.monitoringCoordinator();
  coordinator.set(MonitoringSurface::mainWindow, true);
  coordinator.set(MonitoringSurface::overview, true);
  coordinator.start();
  std::vector<std::int64_t> owned;
  while (owned.size() < passes) {
    const std::size_t before = model.systemHistory->size();
    machine.owner.takeHolds();
    coordinator.restart();
    machine.owner.runUntil([&] { return model.systemHistory->size() > before; });
    machine.owner.runUntil([&] { return true; });
    std::int64_t sum = 0;
    for (const std::int64_t hold : machine.owner.takeHolds()) {
      sum += hold;
    }
    owned.push_back(sum);
  }
  // What the owner's thread reads in a pass.
  SystemMetricsService metrics(*machine.platform.systemCounters);
  const VolumeMetricsService volumes(*machine.platform.reader, *machine.platform.volumes, *machine.platform.mountTable,
                                     machine.platform.places);
  std::vector<std::int64_t> read;
  while (read.size() < passes) {
    const auto began = Clock::now();
    metrics.capture(machine.platform.now());
    volumes.capture("/");
    read.push_back(microseconds(Clock::now() - began));
  }
  print({{"owned", owned}, {"read", read}});
}

std::int64_t residentBytes() {
  ::malloc_trim(0);
  std::ifstream status("/proc/self/statm");
  std::int64_t pages = 0;
  status >> pages >> pages;
  return pages * 4096;
}

void engineMemory() {
  Machine machine;
  const auto scan = machine.store.load("/");
  if (scan && *scan) {
    (*scan)->children("/");
  }
  print({{"resident", {residentBytes()}}});
}

void modelMemory() {
  Machine machine;
  AppModel model(machine.platform, machine.store, machine.scheduler, AppModel::Services::all);
  machine.owner.runUntil([&] { return hasEverything(model); });
  await(machine, model.refreshInsights());
  print({{"resident", {residentBytes()}}});
}

}  // namespace

int main(int count, char** arguments) {
  const std::string_view what = count == 2 ? arguments[1] : "";
  const std::vector<std::pair<std::string_view, void (*)()>> measurements = {
      {"store", storeScan}, {"start", start},         {"day", day},
      {"pass", pass},       {"engine", engineMemory}, {"model", modelMemory}};
  const auto found = std::ranges::find(measurements, what, &std::pair<std::string_view, void (*)()>::first);
  if (found == measurements.end()) {
    std::fputs("usage: model_times store|start|day|pass|engine|model\n", stderr);
    return 2;
  }
  found->second();
  return 0;
}
