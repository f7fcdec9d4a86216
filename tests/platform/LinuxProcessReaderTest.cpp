#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <time.h>

#include <algorithm>
#include <filesystem>
#include <memory>

#include "platform/linux/LinuxAppControl.h"
#include "platform/linux/LinuxProcessReader.h"
#include "support/ChildProcess.h"
#include "support/FakeProcesses.h"
#include "support/TemporaryHome.h"

namespace lumenary {
namespace {

constexpr std::uint64_t mebibyte = std::uint64_t{1024} * 1024;
constexpr std::uint64_t second = 1'000'000'000;

std::optional<ProcessUsage> usageOf(LinuxProcessReader& reader, pid_t pid) {
  const auto sample = reader.sample();
  const auto found = std::ranges::find(sample.processes, pid, &ProcessUsage::pid);
  return found == sample.processes.end() ? std::nullopt : std::optional(*found);
}

void burn(double seconds) {
  timespec now{};
  do {
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  } while (static_cast<double>(now.tv_sec) + (static_cast<double>(now.tv_nsec) / 1e9) < seconds);
}

/// Waits until a process that starts now has another start time.
void passATick() {
  timespec begin{};
  timespec now{};
  ::clock_gettime(CLOCK_BOOTTIME, &begin);
  do {
    ::clock_gettime(CLOCK_BOOTTIME, &now);
  } while ((now.tv_sec - begin.tv_sec) * 1'000'000'000 + now.tv_nsec - begin.tv_nsec < 20'000'000);
}

/// Memory that is there, as the kernel gives it: sanitizers would add as much again and more for what they see.
void* touch(std::size_t bytes) {
  constexpr int flags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_POPULATE;
  return reinterpret_cast<void*>(::syscall(SYS_mmap, nullptr, bytes, PROT_READ | PROT_WRITE, flags, -1, 0));
}

TEST(ProcessFiles, ReadsWhatTheKernelWritesOfAProcess) {
  const auto stat = parseProcessStat(
      "42 (evil) R 1 (x\n) S 7 1 1 0 -1 4194304 100 999 20 999 30 12 888 888 20 0 3 0 5000 70000 11 "
      "18446744073709551615");
  ASSERT_TRUE(stat);
  EXPECT_EQ(*stat, (ProcessStat{.name = "evil) R 1 (x\n",
                                .state = 'S',
                                .parent = 7,
                                .flags = 4194304,
                                .faults = 120,
                                .cpuTicks = 42,
                                .startTicks = 5000,
                                .virtualBytes = 70000,
                                .residentPages = 11}));
  EXPECT_FALSE(stat->isKernelThread());
  EXPECT_TRUE(parseProcessStat("2 (kthreadd) S 0 0 0 0 -1 2129984 0 0 0 0 0 0 0 0 20 0 1 0 1 0 0")->isKernelThread());
  EXPECT_FALSE(parseProcessStat(""));
  EXPECT_FALSE(parseProcessStat("42 (cut) S 7 1"));
  EXPECT_FALSE(parseProcessStat(") ("));

  EXPECT_EQ(parseProcessStatus("Name:\tRssAnon: 999 kB\\nx\nUid:\t1000\t1001\t1002\t1003\nRssAnon:\t     10 kB\n"
                               "RssFile:\t  500 kB\nRssShmem:\t  2 kB\nVmSwap:\t   1 kB\n"),
            (ProcessStatus{.uid = 1001, .footprintBytes = 13 * 1024}));
  EXPECT_FALSE(parseProcessStatus("Name:\tx\n"));
  EXPECT_EQ(parseArguments(std::string_view("a\0b c\0\0d\0", 9)), (std::vector<std::string>{"a", "b c", "", "d"}));
  EXPECT_EQ(parseArguments("rewritten title"), std::vector<std::string>{"rewritten title"});
}

TEST(ProcessFiles, KnowsTheAppOfAControlGroup) {
  const std::string slice = "0::/user.slice/user-1000.slice/user@1000.service/app.slice/";
  const std::vector<std::pair<std::string, std::string>> cases = {
      {slice + "app-gnome-org.gnome.Maps-1234.scope\n", "org.gnome.Maps"},
      {slice + "app-gnome-firefox\\x2desr-2212.scope\n", "firefox-esr"},
      {slice + "app-flatpak-org.mozilla.firefox-77.scope/inner/deeper\n", "org.mozilla.firefox"},
      {slice + "app-org.kde.dolphin@ab12.service\n", "org.kde.dolphin"},
      {slice + "app-org.kde.konsole-9f.scope/tab(7).scope\n", "org.kde.konsole"},
      {slice + "app-org.gnome.Terminal.slice/vte-spawn-5e1c.scope\n", ""},
      {slice + "dbus-:1.2-org.gnome.Nautilus@0.service\n", "org.gnome.Nautilus"},
      {slice + "snap.firefox.firefox-0b5e.scope\n", "firefox"},
      {"12:pids:/user.slice\n" + slice + "app-a-b-1.scope\n", "b"},
      {"0::/system.slice/ssh.service\n", ""},
      {"0::/app-.scope\n", ""},
      {"", ""},
  };
  for (const auto& [text, id] : cases) {
    EXPECT_EQ(appIDOfControlGroup(text), id) << text;
  }
  EXPECT_EQ(LinuxAppControl::appUnit(slice + "app-flatpak-x-77.scope/inner\n"), "app-flatpak-x-77.scope");
  EXPECT_EQ(LinuxAppControl::appUnit("0::/system.slice/ssh.service\n"), "");
}

TEST(AppAttribution, FindsTheAppOfAProcess) {
  const AppAttribution apps({{.path = "/maps.desktop", .id = "org.gnome.Maps", .name = "", .program = "/usr/bin/maps"},
                             {.path = "/chrome.desktop",
                              .id = "chrome",
                              .name = "",
                              .program = "/opt/chrome/chrome",
                              .ownFolders = {"/opt/chrome"}},
                             {.path = "/inner.desktop", .id = "inner", .name = "", .ownFolders = {"/opt/chrome/inner"}},
                             {.path = "/one.desktop", .id = "one", .name = "", .program = "/usr/bin/office"},
                             {.path = "/two.desktop", .id = "two", .name = "", .program = "/usr/bin/office"},
                             {.path = "/script.desktop", .id = "s", .name = "", .program = "/usr/bin/python3.11"}});
  struct Case {
    const char* group;
    const char* executable;
    const char* path;
  };
  for (const Case& one : std::vector<Case>{{"ORG.gnome.maps", "", "/maps.desktop"},
                                           {"unknown", "/usr/bin/maps", "/maps.desktop"},
                                           {"", "/opt/chrome/crash_handler", "/chrome.desktop"},
                                           {"", "/opt/chrome/inner/x", "/inner.desktop"},
                                           {"", "/opt/chromeos/x", ""},
                                           {"", "/usr/bin/office", ""},
                                           {"two", "/usr/bin/office", "/two.desktop"},
                                           {"", "/usr/bin/python3.11", ""},
                                           {"", "", ""}}) {
    const RegisteredApp* const app = apps.appOf(one.group, one.executable);
    EXPECT_EQ(app == nullptr ? "" : app->path, one.path) << one.group << " " << one.executable;
  }
}

TEST(LinuxProcessReader, MeasuresAProcess) {
  const FakeRegistry registry;
  for (const std::size_t descriptorLimit : {std::size_t{0}, std::size_t{1}, std::size_t{1000}}) {
    LinuxProcessReader reader(registry, descriptorLimit);
    void* memory = nullptr;
    ChildProcess child({[] { ::prctl(PR_SET_NAME, "a) R 1 (\n\x1b"); }, [&] { memory = touch(64 * mebibyte); },
                        [] { burn(0.3); }, [&] { ::syscall(SYS_munmap, memory, 64 * mebibyte); }});
    const auto before = usageOf(reader, child.pid);
    ASSERT_TRUE(before);
    EXPECT_EQ(before->appPath, std::filesystem::read_symlink("/proc/self/exe").string());
    EXPECT_EQ(reader.namedRecord(child.pid)->name, "a) R 1 (\n\x1b");

    child.goOn();
    const auto after = usageOf(reader, child.pid);
    ASSERT_TRUE(after);
    EXPECT_NEAR(static_cast<double>(after->footprintBytes - before->footprintBytes), 64.0 * mebibyte, 12.0 * mebibyte);
    EXPECT_GE(after->residentBytes, 64 * mebibyte);

    child.goOn();
    const auto busy = usageOf(reader, child.pid);
    ASSERT_TRUE(busy);
    EXPECT_EQ(busy->footprintBytes / mebibyte, after->footprintBytes / mebibyte);
    EXPECT_GE(busy->cpuNanoseconds, second * 28 / 100);

    child.goOn();
    EXPECT_LT(usageOf(reader, child.pid)->footprintBytes, after->footprintBytes - (48 * mebibyte));
    child.leaveUnasked();
    EXPECT_FALSE(usageOf(reader, child.pid)) << "it has ended, though nobody asked how";
    EXPECT_FALSE(reader.record(child.pid));
  }
}

TEST(LinuxProcessReader, TellsWhoAProcessIs) {
  const FakeRegistry registry;
  const LinuxProcessReader reader(registry);
  TemporaryHome home;
  home.makeFolder("project");
  home.makeFolder("removed");
  ChildProcess child({[&] { std::filesystem::current_path(home.path("project")); },
                      [&] {
                        std::filesystem::current_path(home.path("removed"));
                        std::filesystem::remove(home.path("removed"));
                      }});
  const auto record = reader.record(child.pid);
  ASSERT_TRUE(record);
  EXPECT_EQ(record->parent, ::getpid());
  EXPECT_EQ(record->uid, ::geteuid());
  EXPECT_EQ(reader.record(child.pid), record);
  EXPECT_LE(record->startedAt, std::chrono::system_clock::now() + std::chrono::seconds(1));
  EXPECT_EQ(reader.workingFolder(child.pid), home.path("project"));
  child.goOn();
  EXPECT_EQ(reader.workingFolder(child.pid), std::nullopt);

  const pid_t longLine = ::fork();
  if (longLine == 0) {
    const std::string argument(100'000, 'x');
    ::execl("/usr/bin/perl", "a name of\n its own", "-e", "sleep 1000", argument.c_str(), nullptr);
    ::_exit(1);
  }
  std::vector<std::string> arguments;
  while (arguments.empty() || arguments.front() != "a name of\n its own") {
    arguments = reader.arguments(longLine, 1000);
  }
  ::kill(longLine, SIGTERM);
  ::waitpid(longLine, nullptr, 0);
  ASSERT_GE(arguments.size(), 2U);
  EXPECT_EQ(arguments[1], "-e");
  std::size_t bytes = 0;
  for (const std::string& argument : arguments) {
    bytes += argument.size() + 1;
  }
  EXPECT_LE(bytes, 1001U);

  const pid_t gone = std::exchange(child.pid, -1);
  ::kill(gone, SIGKILL);
  ::waitpid(gone, nullptr, 0);
  EXPECT_EQ(reader.record(gone), std::nullopt);
  EXPECT_EQ(reader.namedRecord(gone), std::nullopt);
  EXPECT_EQ(reader.workingFolder(gone), std::nullopt);
  EXPECT_TRUE(reader.arguments(gone, 1000).empty());
}

TEST(LinuxProcessReader, PutsProcessesUnderTheirApp) {
  TemporaryHome home;
  home.makeFolder("maps");
  const std::string program = home.path("maps/helper");
  std::filesystem::copy_file("/bin/sleep", program);
  FakeRegistry registry;
  registry.list = {
      {.path = home.path("maps.desktop"), .id = "org.example.Maps", .name = "Maps", .ownFolders = {home.path("maps")}}};
  LinuxProcessReader reader(registry);
  const pid_t pid = ::fork();
  if (pid == 0) {
    ::execl(program.c_str(), "helper", "1000", nullptr);
    ::_exit(1);
  }
  while (reader.executablePath(pid) != program) {
  }
  const auto sample = reader.sample();
  EXPECT_EQ(usageOf(reader, pid)->appPath, home.path("maps.desktop"));
  EXPECT_EQ(sample.apps,
            (std::vector<RunningApp>{
                {.pid = pid, .path = home.path("maps.desktop"), .id = "org.example.Maps", .name = "Maps"}}));
  EXPECT_EQ(reader.appPath(pid), home.path("maps.desktop"));

  registry.list.clear();
  reader.appsChanged();
  EXPECT_EQ(usageOf(reader, pid)->appPath, program) << "the app was removed while it ran";
  std::filesystem::remove(program);
  EXPECT_EQ(reader.appPath(pid), program) << "and its program";
  ::kill(pid, SIGTERM);
  ::waitpid(pid, nullptr, 0);
}

TEST(LinuxProcessReader, KeepsNothingOfAProcessThatEnded) {
  const FakeRegistry registry;
  LinuxProcessReader reader(registry);
  reader.sample();
  const auto openFiles = [] { return namesIn("/proc/self/fd").size(); };
  const std::size_t before = openFiles();
  std::vector<std::unique_ptr<ChildProcess>> children;
  for (int count = 0; count < 20; ++count) {
    children.push_back(std::make_unique<ChildProcess>(std::vector<std::function<void()>>{[] {}}));
  }
  reader.sample();
  EXPECT_GE(openFiles(), before + 40);
  children.clear();
  reader.sample();
  EXPECT_LE(openFiles(), before + 10) << "others may have started";
}

TEST(LinuxProcessReader, TakesNoProcessForAnEarlierOneOfItsNumber) {
  const FakeRegistry registry;
  for (const std::size_t descriptorLimit : {std::size_t{0}, std::size_t{1000}}) {
    LinuxProcessReader reader(registry, descriptorLimit);
    ChildProcess first({[] {
      touch(64 * mebibyte);
      burn(0.1);
    }});
    const pid_t pid = first.pid;
    const auto large = usageOf(reader, pid);
    const auto record = reader.record(pid);
    ASSERT_TRUE(large && record);
    passATick();
    first.end();
    const auto heir = takeNumber(pid);
    if (heir == nullptr) {
      GTEST_SKIP() << "numbers can't be chosen here";
    }
    const auto small = usageOf(reader, pid);
    ASSERT_TRUE(small);
    EXPECT_LT(small->footprintBytes, large->footprintBytes - (48 * mebibyte));
    EXPECT_LT(small->cpuNanoseconds, large->cpuNanoseconds);
    EXPECT_NE(reader.record(pid), record);
  }
}

}  // namespace
}  // namespace lumenary
