#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <string>
#include <vector>

#include "platform/linux/LinuxAppControl.h"
#include "platform/linux/LinuxProcessReader.h"
#include "platform/linux/LinuxToolRunner.h"
#include "support/ChildProcess.h"
#include "support/FakeProcesses.h"
#include "support/FakeTools.h"
#include "support/XServer.h"

namespace lumenary {
namespace {

TEST(LinuxAppControl, AsksOnlyTheProcessThatWasMeant) {
  const FakeRegistry registry;
  const LinuxProcessReader reader(registry);
  const LinuxToolRunner tools;
  LinuxAppControl control(tools, reader, registry, "");
  const auto yes = [] { return true; };
  EXPECT_FALSE(control.terminate(::getpid(), yes));
  EXPECT_FALSE(control.requestQuit(::getpid(), yes));
  EXPECT_FALSE(control.terminate(1, yes));
  EXPECT_FALSE(control.terminate(0, yes));
  EXPECT_FALSE(control.terminate(-1, yes));

  ChildProcess child({[] {}});
  EXPECT_FALSE(control.terminate(child.pid, [] { return false; }));
  EXPECT_TRUE(reader.record(child.pid));
  EXPECT_TRUE(control.requestQuit(child.pid, yes));
  int status = 0;
  ::waitpid(std::exchange(child.pid, -1), &status, 0);
  EXPECT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGTERM);

  // It ends right after the handle was taken, and its number goes to another.
  ChildProcess meant({[] {}});
  std::unique_ptr<ChildProcess> other;
  const pid_t pid = meant.pid;
  const bool isAsked = control.terminate(pid, [&] {
    meant.end();
    other = takeNumber(pid);
    return true;
  });
  EXPECT_FALSE(isAsked);
  if (other == nullptr) {
    GTEST_SKIP() << "numbers can't be chosen here";
  }
  EXPECT_TRUE(reader.record(pid)) << "the other one lives";
}

TEST(LinuxAppControl, LowersAProcessOnlyWhereItCanRaiseItAgain) {
  const FakeRegistry registry;
  const LinuxProcessReader reader(registry);
  const LinuxToolRunner tools;
  LinuxAppControl control(tools, reader, registry, "");
  const ChildProcess child({[] {}});
  const auto nice = [&] { return ::getpriority(PRIO_PROCESS, static_cast<id_t>(child.pid)); };
  const int before = nice();
  const bool isLow = control.lowerPriority(child.pid);
  EXPECT_EQ(nice(), isLow ? 19 : before);
  control.restorePriority(child.pid);
  EXPECT_EQ(nice(), before);
  EXPECT_FALSE(control.lowerPriority(::getpid()));
  EXPECT_FALSE(control.lowerPriority(1));
}

TEST(LinuxAppControl, ClosesTheWindowsOfAnApp) {
  const XServer server;
  ASSERT_FALSE(server.display.empty()) << "Xvfb doesn't start";
  const XClient manager(server.display);
  manager.manageWindows();
  const FakeRegistry registry;
  const LinuxProcessReader reader(registry);
  const FakeTools tools;
  LinuxAppControl control(tools, reader, registry, server.display, std::chrono::minutes(1));
  const auto yes = [] { return true; };

  ChildProcess app({[] {}});
  std::array<char, 256> machine{};
  ::gethostname(machine.data(), machine.size() - 1);
  const auto window = [&](pid_t pid, const std::string& host) {
    const xcb_window_t made = manager.makeWindow(100, 100);
    manager.set(made, "_NET_WM_PID", XCB_ATOM_CARDINAL, {static_cast<std::uint32_t>(pid)});
    manager.set(made, "WM_CLIENT_MACHINE", host);
    return made;
  };
  const xcb_window_t own = window(app.pid, machine.data());
  const xcb_window_t another = window(app.pid + 1, machine.data());
  const xcb_window_t remote = window(app.pid, "another-machine");
  manager.set(manager.root(), "_NET_CLIENT_LIST", XCB_ATOM_WINDOW, {another, remote, own});
  manager.activate(own);
  EXPECT_EQ(control.frontProcess(), app.pid);

  EXPECT_FALSE(control.requestQuit(app.pid, [] { return false; }));
  const xcb_atom_t close = manager.atom("_NET_CLOSE_WINDOW");
  EXPECT_TRUE(control.requestQuit(app.pid, yes));
  EXPECT_EQ(manager.nextMessage(), (std::pair{own, close}));
  EXPECT_TRUE(reader.record(app.pid)) << "it may ask about what isn't saved";

  manager.set(manager.root(), "_NET_CLIENT_LIST", XCB_ATOM_WINDOW, {another, remote});
  EXPECT_TRUE(control.requestQuit(app.pid, yes)) << "without a window the process itself is asked";
  int status = 0;
  ::waitpid(std::exchange(app.pid, -1), &status, 0);
  EXPECT_EQ(WTERMSIG(status), SIGTERM);
  EXPECT_EQ(LinuxAppControl(tools, reader, registry, "").frontProcess(), std::nullopt);
}

TEST(LinuxAppControl, OpensAnAddressWithAnApp) {
  FakeRegistry registry;
  registry.list = {{.path = "/c.desktop", .id = "chrome", .name = "", .program = "/opt/chrome"},
                   {.path = "/f", .id = "com.google.Chrome", .name = "", .origin = AppOrigin::flatpak},
                   {.path = "/n", .id = "n", .name = ""}};
  const FakeProcesses processes;
  FakeTools tools;
  LinuxAppControl control(tools, processes, registry, "");
  EXPECT_TRUE(control.open("/c.desktop", "chrome://settings"));
  EXPECT_TRUE(control.open("/f", "x"));
  EXPECT_TRUE(control.open("/c.desktop", ""));
  EXPECT_FALSE(control.open("/n", "x")) << "what it starts isn't known";
  EXPECT_FALSE(control.open("/gone", "x"));
  EXPECT_EQ(tools.calls, (std::vector<std::string>{"start /opt/chrome chrome://settings",
                                                   "start /usr/bin/flatpak run com.google.Chrome x",
                                                   "start /usr/bin/gio launch /c.desktop"}));
  const std::string purge = "/usr/bin/pkexec /usr/sbin/sysctl -q -w vm.drop_caches=1";
  EXPECT_FALSE(control.emptyFileCache());
  tools.answers[purge] = "";
  tools.statuses[purge] = 126;
  EXPECT_FALSE(control.emptyFileCache()) << "no password was given";
  tools.statuses.clear();
  EXPECT_TRUE(control.emptyFileCache());
}

}  // namespace
}  // namespace lumenary
