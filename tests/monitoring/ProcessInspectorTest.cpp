#include <gtest/gtest.h>

#include <chrono>
#include <limits>

#include "monitoring/ProcessInspector.h"
#include "support/FakeProcesses.h"

namespace lumenary {
namespace {

constexpr std::uint64_t second = 1'000'000'000;

Date at(int seconds) { return Date(std::chrono::seconds(seconds)); }

TEST(ProcessInspector, PutsAProcessInTheLineOfItsApp) {
  using Running = std::vector<ProcessInspector::RunningAppPath>;
  const std::string foo = "/Applications/Foo.app";
  const std::string helper = foo + "/Contents/Frameworks/Foo Helper.app/Contents/MacOS/Foo Helper";
  struct Case {
    std::string path;
    Running running;
    ProcessInspector::AppGroup group;
  };
  const ProcessInspector::AppGroup background{.key = "background", .name = "macOS & background"};
  const std::string entry = "/usr/share/applications/org.gnome.Maps.desktop";
  const std::vector<Case> cases = {
      {helper, {{foo, "Foo!"}}, {foo, "Foo!", foo}},
      {helper, {}, {foo, "Foo", foo}},
      {foo + "/Contents/Inner.app/x",
       {{foo, "Foo"}, {foo + "/Contents/Inner.app", {}}},
       {foo + "/Contents/Inner.app", "Inner", foo + "/Contents/Inner.app"}},
      {"/Applications/Foo.application/x", {{foo, "Foo"}}, background},
      {"/usr/libexec/something", {{foo, "Foo"}}, background},
      {"", {{"", "Nothing"}}, background},
      {"Foo.app//Contents/x", {}, {"/Foo.app", "Foo", "/Foo.app"}},
      {"/a/Foo.app", {}, {"/a/Foo.app", "Foo", "/a/Foo.app"}},
      {"/x/qemu-system-aarch64.app/y",
       {{"/x/qemu-system-aarch64.app", "Emulator"}},
       {"/x/qemu-system-aarch64.app", "Android Emulator", "/x/qemu-system-aarch64.app"}},
      {entry, {{entry, "Maps"}}, {entry, "Maps", entry}},
  };
  for (const Case& one : cases) {
    EXPECT_EQ(ProcessInspector::appGroup(one.path, one.running), one.group) << one.path;
  }
}

TEST(ProcessInspector, AddsUpEveryProcessOfAnApp) {
  FakeProcesses processes;
  FakeControl control;
  ProcessInspector inspector(processes, control, "anna");
  const std::string maps = "/apps/maps.desktop";
  processes.next.processes = {{1, 5 * second, 10, 0, "/sbin/init"},
                              {20, 1 * second, 100, 300, maps},
                              {21, 9 * second, 50, 0, maps},
                              {30, 0, 10, 0, ""}};
  processes.next.apps = {{.pid = 20, .path = maps, .id = "maps", .name = "Maps\nAtlas"}};
  const AppMemoryUsage first{.key = maps,
                             .name = "Maps\uFFFDAtlas",
                             .bundlePath = maps,
                             .memoryBytes = 150,
                             .processCount = 2,
                             .mainPID = 20,
                             .pids = {20, 21}};
  const AppMemoryUsage background{
      .key = "background", .name = "macOS & background", .memoryBytes = 20, .processCount = 2, .pids = {1, 30}};
  EXPECT_EQ(inspector.appUsage(at(100)), (std::vector<AppMemoryUsage>{first, background}));

  // Two seconds on: one process used three, another's number was taken by one that has used less so far.
  processes.next.processes[1].cpuNanoseconds += 3 * second;
  processes.next.processes[2].cpuNanoseconds = 1 * second;
  EXPECT_DOUBLE_EQ(inspector.appUsage(at(102)).front().cpuPercent, 150);
  EXPECT_DOUBLE_EQ(inspector.appUsage(at(102)).front().cpuPercent, 0) << "no time went by";
}

TEST(ProcessInspector, ListsTheBusiestAppsFirst) {
  FakeProcesses processes;
  FakeControl control;
  ProcessInspector inspector(processes, control, "anna");
  processes.next.processes = {{2, 0, 0, 10, ""}, {3, 0, 0, 30, ""}, {4, 0, 0, 20, ""}};
  processes.next.apps = {{2, "/a", "a", "A"}, {3, "/b", "b", ""}, {4, "/c", "c", "C"}, {5, "/gone", "gone", "Gone"}};
  EXPECT_EQ(inspector.snapshots(9, at(0)).front(),
            (ProcessSnapshot{.pid = 3, .name = "b", .memoryBytes = 30, .user = "anna", .executablePath = "/b"}));
  processes.next.processes[0].cpuNanoseconds = 9 * second;
  const auto busiest = inspector.snapshots(2, at(1));
  ASSERT_EQ(busiest.size(), 2U);
  EXPECT_EQ(busiest[0].name, "A");
  EXPECT_DOUBLE_EQ(busiest[0].cpuPercent, 100) << "one processor at most";
  EXPECT_EQ(busiest[1].name, "b");
}

TEST(ProcessInspector, QuitsOnlyWhatStillIsTheApp) {
  FakeProcesses processes;
  const AppMemoryUsage usage{
      .key = "/apps/maps", .name = "Maps", .bundlePath = "/apps/maps", .mainPID = 20, .pids = {20, 21, 22}};
  AppMemoryUsage background = usage;
  background.bundlePath.reset();
  background.mainPID.reset();
  struct Case {
    std::map<std::int32_t, std::string> paths;
    AppMemoryUsage usage;
    std::vector<std::string> calls;
  };
  const std::vector<Case> cases = {
      {{{20, "/apps/maps"}, {21, "/apps/maps/helper"}}, usage, {"quit 20"}},
      {{{20, "/apps/mapsmaker"}, {21, "/apps/maps/helper"}, {22, "/apps/maps"}},
       usage,
       {"terminate 21", "terminate 22"}},
      {{}, usage, {}},
      {{{20, "/apps/maps"}}, background, {}},
  };
  for (const Case& one : cases) {
    FakeControl control;
    ProcessInspector inspector(processes, control, "anna");
    processes.running.clear();
    for (const auto& [pid, path] : one.paths) {
      processes.running[pid].appPath = path;
    }
    EXPECT_EQ(inspector.quit(one.usage), !one.calls.empty());
    EXPECT_EQ(control.calls, one.calls);
  }
}

}  // namespace
}  // namespace lumenary
