#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "core/AppModel.h"
#include "platform/linux/LinuxContentReader.h"
#include "platform/linux/LinuxDefaults.h"
#include "platform/linux/LinuxDurableFiles.h"
#include "platform/linux/LinuxFileReader.h"
#include "platform/linux/LinuxMountTable.h"
#include "platform/linux/LinuxTrash.h"
#include "platform/linux/LinuxTrashBin.h"
#include "support/FakePlatform.h"
#include "support/FakeProcesses.h"
#include "support/FakeTools.h"
#include "support/FaultKernel.h"
#include "support/HookedReader.h"
#include "support/JudgedHome.h"
#include "support/ManualAsync.h"
#include "support/TemporaryHome.h"

namespace lumenary {

struct MadeVolumes final : VolumeReader {
  VolumeCapacity all{.totalBytes = 1'000'000'000'000, .availableBytes = 400'000'000'000};
  mutable int asked = 0;

  SystemResult<VolumeCapacity> capacity(const std::string&) const override {
    ++asked;
    return all;
  }
  std::optional<std::string> label(const Mount&) const override { return std::nullopt; }
  bool isRemovable(const Mount&) const override { return true; }
};

struct MadeSession final : Session {
  bool isBusy = false;

  bool isFullScreenAppInFront() const override { return isBusy; }
  bool isMicrophoneInUse() const override { return false; }
};

struct MadeCounters final : SystemCountersReader {
  SystemCounters read() override { return {.physicalMemoryBytes = 1000}; }
};

struct MadeFacts final : SystemFacts {
  std::string kernelRelease() const override { return "6.1"; }
  std::vector<SwapFile> swapFiles() const override { return {}; }
  DeletedOpenFiles deletedOpenFiles() const override { return {}; }
  std::vector<std::string> openPaths() const override { return {}; }
  std::optional<std::int64_t> reservedBytes(const std::string&) const override { return {}; }
  std::optional<RoomOnVolume> room(const std::string&) const override { return {}; }
};

struct NotingDesktop final : Desktop {
  std::vector<std::string> notes;

  void notify(const std::string& title, const std::string& body, const std::string& identifier) override {
    notes.push_back(identifier + ": " + title + " / " + body);
  }
  void reveal(const std::string& path) override { notes.push_back("Reveal " + path); }
  void showTrash() override { notes.emplace_back("Trash"); }
};

/// A file descriptor that stands for a queue of events; the test says when it can be read.
class MadeEvents {
 public:
  const Descriptor& events() const { return descriptor_; }

 private:
  Descriptor descriptor_{++lastNumber_};  // of no open file: closing it does nothing
  static inline int lastNumber_ = 1'000'000;
};

struct MadeFolderWatcher final : FolderWatcher {
  MadeEvents queue;
  std::vector<std::string> folders;

  void watch(std::vector<std::string> wanted) override { folders = std::move(wanted); }
  const Descriptor& events() const override { return queue.events(); }
  bool read() override { return true; }
};

struct MadeMountWatcher final : MountWatcher {
  MadeEvents queue;

  const Descriptor& events() const override { return queue.events(); }
  bool read() override { return true; }
};

/// A home with the real engine over it: what moves, is stored and is read is real, below one folder; the rest of the
/// machine is made. Time stands still until the test turns it.
struct ModelHome {
  enum class Threads : std::uint8_t { manual, real };

  explicit ModelHome(Threads wanted = Threads::manual)
      : threads(wanted == Threads::real ? std::make_unique<CountedThreads>(owner) : nullptr) {
    LinuxKernel& usedKernel = threads ? plainKernel : kernel;
    platform.places = JudgedHome::madePlaces(home.root());
    platform.contents = std::make_unique<LinuxContentReader>(real);
    platform.reader =
        std::make_unique<HookedReader>(real, [this](auto, std::string_view path) { return beforeRead(path); });
    platform.files = std::make_unique<LinuxDurableFiles>(usedKernel);
    platform.trash = std::make_unique<LinuxTrash>(usedKernel, real, mountTable, platform.places);
    platform.trashBin = std::make_unique<LinuxTrashBin>(usedKernel, real, mounts, platform.places, 1);
    platform.defaults = std::make_unique<LinuxDefaults>(*platform.files, platform.places.defaultsFile);
    platform.now = [this] { return now(); };
    platform.processors = [] { return 2U; };
    platform.processID = 4711;
    store = std::make_unique<ScanStore>(*platform.files, platform.places.support);
  }

  Date now() const { return start + std::chrono::floor<std::chrono::microseconds>(owner.elapsed()); }

  /// The files of the home go by these as by their scan: "~/x" stands in it.
  std::string at(const std::string& path) const { return home.path(path); }
  FileURL url() const { return {.path = home.root(), .isFolder = true}; }

  /// Runs all work and all calls until nothing is left to do at this time.
  void settle() {
    if (threads) {
      ASSERT_TRUE(owner.runUntil([this] { return threads->isIdle(); }));
      return;
    }
    do {
      owner.runAll();
    } while (workers.runOne() || !workers.isIdle());
    owner.runAll();
  }
  /// Turns the clock on in steps, with the work of each.
  void advance(Executor::Duration time, Executor::Duration step = std::chrono::seconds(1)) {
    for (settle(); time > Executor::Duration::zero(); time -= step) {
      owner.advance(std::min(step, time));
      settle();
    }
  }
  AppModel& makeModel(AppModel::Services services = AppModel::Services::all) {
    model = std::make_unique<AppModel>(platform, *store, scheduler, services);
    return *model;
  }
  /// The flow's value, with all the work it takes.
  template <class Value>
  Value await(Task<Value> task) {
    std::optional<Value> value;
    TaskScope scope;
    scope.spawn(keep(std::move(task), value));
    settle();
    return value.value();
  }
  void await(Task<> task) {
    TaskScope scope;
    scope.spawn(std::move(task));
    settle();
    ASSERT_TRUE(scope.isIdle());
  }
  void scanHome() {
    model->scanStorage(url());
    settle();
  }

  TemporaryHome home;
  FaultKernel kernel;  ///< with manual threads only: it isn't made for several
  LinuxKernel plainKernel;
  LinuxFileReader real;
  LinuxMountTable mountTable;  ///< the Trash goes by the real mounts
  std::function<std::optional<SystemError>(std::string_view)> beforeRead = [](auto) { return std::nullopt; };
  ManualExecutor owner;
  ManualWorkers workers;
  std::unique_ptr<CountedThreads> threads;
  Scheduler scheduler{owner, threads ? static_cast<Workers&>(*threads) : workers};
  Date start = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());

  Platform platform;
  MadeMounts& mounts = put<MadeMounts>(platform.mountTable);
  MadeVolumes& volumes = put<MadeVolumes>(platform.volumes);
  KnownApps& appNames = put<KnownApps>(platform.appNames);
  FakeRegistry& registry = put<FakeRegistry>(platform.apps);
  MadeSession& session = put<MadeSession>(platform.session);
  FakeTools& tools = put<FakeTools>(platform.tools);
  MadeFacts& facts = put<MadeFacts>(platform.systemFacts);
  MadeFolderWatcher& folderWatcher = put<MadeFolderWatcher>(platform.folderWatcher);
  MadeFolderWatcher& supportWatcher = put<MadeFolderWatcher>(platform.supportWatcher);
  MadeMountWatcher& mountWatcher = put<MadeMountWatcher>(platform.mountWatcher);
  NotingDesktop& desktop = put<NotingDesktop>(platform.desktop);
  MadeCounters& counters = put<MadeCounters>(platform.systemCounters);
  FakeProcesses& processes = put<FakeProcesses>(platform.processes);
  FakeProcesses& sockets = put<FakeProcesses>(platform.sockets);
  FakeControl& control = put<FakeControl>(platform.appControl);
  std::unique_ptr<ScanStore> store;
  std::unique_ptr<AppModel> model;

 private:
  template <class Value>
  static Task<> keep(Task<Value> task, std::optional<Value>& value) {
    value = co_await task;
  }
};

}  // namespace lumenary
