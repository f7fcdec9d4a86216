#include <gtest/gtest.h>

#include "monitoring/NotchProcessActions.h"
#include "platform/linux/LinuxFileReader.h"
#include "support/FakeProcesses.h"

namespace lumenary {
namespace {

constexpr std::uint32_t me = 1000;
constexpr std::int32_t serverID = 50;
const Date started{std::chrono::seconds(1000)};

/// A server at port 3000 in a project, under npm, under a shell, under a terminal.
class ProcessActions : public ::testing::Test {
 protected:
  ProcessActions() {
    run(10, 1, {"/usr/bin/tmux", "new", "-s", "yarn", "npm run dev"});  // much else may run in it
    run(20, 10, {"sh", "-c", "npm run dev"});
    run(30, 20, {"/usr/bin/node", "npm-cli.js", "run", "dev"});
    run(40, 30, {"sh", "-c", "vite --watch"});
    run(serverID, 40, {"node", "server.js"});
    processes.sockets = {{SocketProtocol::tcp, "127.0.0.1", 3000, me, 7}};
    processes.held = {{serverID, 7, 3}};
    control.onTerminate = [this](std::int32_t pid) { end(pid); };
    waitAction = [](int) { return true; };
    shown = ports.inspect().front();
  }

  void run(std::int32_t pid, std::int32_t parent, std::vector<std::string> arguments) {
    processes.running[pid] = {.record = {.pid = pid, .parent = parent, .uid = me, .startedAt = started},
                              .name = "node",
                              .folder = "/home/anna/app",
                              .arguments = std::move(arguments)};
  }

  void end(std::int32_t pid) {
    processes.running.erase(pid);
    std::erase_if(processes.held, [&](const SocketHolder& holder) { return holder.pid == pid; });
    if (processes.held.empty()) {
      processes.sockets.clear();
    }
  }

  NotchActionResult stop() { return actions.stop(shown); }

  FakeProcesses processes;
  FakeControl control;
  LinuxFileReader files;
  PortInspector ports{processes, processes, files, "/home/anna"};
  int waits = 0;
  std::function<bool(int)> waitAction;  ///< what happens while it waits for the nth time
  NotchProcessActions actions{processes, control, ports, {.uid = me, .pid = 99}, [this](std::chrono::milliseconds) {
                                return waitAction(++waits);
                              }};
  PortEntry shown;
};

const NotchActionResult changed{
    .title = "Server changed or already stopped", .details = {"Refresh the list before trying again."}, .failed = true};

TEST_F(ProcessActions, StopsWhatWouldStartTheServerAgainFirst) {
  EXPECT_EQ(stop(), (NotchActionResult{.title = "Server stopped"}));
  EXPECT_EQ(control.calls, (std::vector<std::string>{"terminate 30", "terminate 50"}));
}

TEST_F(ProcessActions, AsksAllThatWouldStartItAgainThoughTheFirstTakesTheServerFromTheOthers) {
  run(35, 30, {"node", "nodemon"});
  run(40, 35, {"sh", "-c", "vite --watch"});
  control.onTerminate = [this](std::int32_t pid) {
    end(pid);
    if (pid == 35) {
      processes.running[serverID].record.parent = 1;
    }
  };
  EXPECT_EQ(stop(), (NotchActionResult{.title = "Server stopped"}));
  EXPECT_EQ(control.calls, (std::vector<std::string>{"terminate 35", "terminate 30", "terminate 50"}));
}

TEST_F(ProcessActions, TellsAServerThatEndsWithItsWatcher) {
  control.onTerminate = [this](std::int32_t pid) {
    end(pid);
    end(serverID);
  };
  EXPECT_EQ(stop(), (NotchActionResult{.title = "Server stopped"}));
  EXPECT_EQ(control.calls, (std::vector<std::string>{"terminate 30"}));
}

TEST_F(ProcessActions, AsksNothingOfAProcessThatChanged) {
  struct Case {
    const char* name;
    std::function<void()> change;
  };
  const std::vector<Case> cases = {
      {"restarted meanwhile", [&] { processes.running[serverID].record.startedAt += std::chrono::seconds(1); }},
      {"gone", [&] { end(serverID); }},
      {"another person's", [&] { processes.running[serverID].record.uid = 0; }},
      {"at another address", [&] { processes.sockets.front().address = "0.0.0.0"; }},
      {"its folder is no project any more", [&] { processes.running[serverID].folder = "/tmp"; }},
      {"start not known", [&] { shown.startedAt.reset(); }},
      {"the program itself", [&] { shown.pid = 99; }},
      {"not to be seen", [&] { shown.pid = 0; }},
  };
  const auto processesBefore = processes;
  const PortEntry shownBefore = shown;
  for (const Case& one : cases) {
    one.change();
    EXPECT_EQ(stop(), changed) << one.name;
    EXPECT_TRUE(control.calls.empty()) << one.name;
    processes.running = processesBefore.running;
    processes.sockets = processesBefore.sockets;
    processes.held = processesBefore.held;
    shown = shownBefore;
  }
}

TEST_F(ProcessActions, SendsNothingWhereTheNumberWasTakenByAnother) {
  control.beforeCheck = [this] { processes.running[serverID].record.startedAt += std::chrono::seconds(1); };
  EXPECT_EQ(stop().title, ":3000 came back") << "another process of the number listens there";
  EXPECT_EQ(control.calls, (std::vector<std::string>{"terminate 30"}));
}

TEST_F(ProcessActions, TellsWhenTheServerDidNotStop) {
  control.deaf = {serverID};
  EXPECT_EQ(stop(), (NotchActionResult{.title = "Couldn’t stop the server",
                                       .details = {"The process did not accept the stop request."},
                                       .failed = true}));
  control.deaf.clear();
  control.onTerminate = [](std::int32_t) {};
  EXPECT_EQ(stop(), (NotchActionResult{.title = "Server is still listening",
                                       .details = {"No force-stop was sent. Open Ports & Projects to inspect it."},
                                       .failed = true}));
  EXPECT_EQ(waits, 25) << "five seconds, a fifth at a time";
}

TEST_F(ProcessActions, TellsWhenSomethingStartedItAgain) {
  waitAction = [this](int) {
    run(51, 1, {"node", "server.js"});
    processes.sockets = {{SocketProtocol::tcp, "127.0.0.1", 3000, me, 8}};
    processes.held = {{51, 8, 3}};
    return true;
  };
  EXPECT_EQ(stop(), (NotchActionResult{.title = ":3000 came back",
                                       .details = {"Something restarted it. Stop it where it was started."},
                                       .failed = true}));
}

TEST_F(ProcessActions, TellsAServerThatOnlyClosedItsPort) {
  control.onTerminate = [this](std::int32_t pid) {
    if (pid == serverID) {
      processes.sockets.clear();
      processes.held.clear();
    }
  };
  EXPECT_EQ(stop(), (NotchActionResult{.title = "Server stopped", .details = {"Its listening ports are closed."}}));
}

TEST_F(ProcessActions, QuitsAnAppOnlyWhileItIsTheOneShown) {
  processes.running[60] = {.record = {.pid = 60, .parent = 1, .uid = me, .startedAt = started},
                           .appPath = "/apps/maps"};
  const AppMemoryUsage usage{.key = "/apps/maps", .name = "Maps", .bundlePath = "/apps/maps", .mainPID = 60};
  const auto identity = NotchProcessIdentity::capture(processes, 60);
  ASSERT_TRUE(identity);
  EXPECT_TRUE(actions.requestQuit(usage, *identity));
  EXPECT_EQ(control.calls, (std::vector<std::string>{"quit 60"}));

  NotchProcessIdentity other = *identity;
  other.startedAt -= std::chrono::seconds(1);
  EXPECT_FALSE(actions.requestQuit(usage, other));
  other = *identity;
  other.uid = 0;
  EXPECT_FALSE(actions.requestQuit(usage, other));
  processes.running[60].appPath = "/apps/another";
  EXPECT_FALSE(actions.requestQuit(usage, *identity));
  processes.running[99] = {.record = {.pid = 99, .parent = 1, .uid = me, .startedAt = started},
                           .appPath = "/apps/maps"};
  EXPECT_FALSE(actions.requestQuit(usage, {.pid = 99, .uid = me, .startedAt = started})) << "the program itself";
  EXPECT_EQ(control.calls.size(), 1U);
  EXPECT_EQ(NotchProcessIdentity::capture(processes, 1), std::nullopt);
}

TEST_F(ProcessActions, TellsHowQuittingWent) {
  processes.running[60] = {.record = {.pid = 60, .parent = 1, .uid = me, .startedAt = started},
                           .appPath = "/apps/maps"};
  const AppMemoryUsage usage{.key = "/apps/maps", .name = "Maps", .bundlePath = "/apps/maps", .mainPID = 60};
  control.deaf = {60};
  EXPECT_EQ(actions.quit(usage).title, "Couldn’t request quit");
  control.deaf.clear();
  control.onTerminate = [](std::int32_t) {};
  EXPECT_EQ(actions.quit(usage).title, "Maps is still open");
  EXPECT_TRUE(actions.quit(usage).failed);
  control.onTerminate = [this](std::int32_t pid) { end(pid); };
  EXPECT_EQ(actions.quit(usage), (NotchActionResult{.title = "Maps quit"}));
  EXPECT_EQ(actions.quit(usage), (NotchActionResult{.title = "Maps already quit"}));
  EXPECT_FALSE(actions.reopen({.name = "Maps", .path = "/apps/maps"}).failed);
  EXPECT_EQ(control.calls.back(), "open /apps/maps ");
}

TEST_F(ProcessActions, ConfirmsThatAnAppQuit) {
  const std::string declined =
      "It may have closed already, or it declined the request. Try quitting it from the app itself.";
  const std::string open = "It's still open. Check it for a save prompt, or quit it from the app itself.";
  processes.running[60] = {.record = {.pid = 60, .parent = 1, .uid = me, .startedAt = started},
                           .appPath = "/apps/maps"};
  const AppMemoryUsage usage{
      .key = "/apps/maps", .name = "Maps", .bundlePath = "/apps/maps", .mainPID = 60, .pids = {60}};
  ProcessInspector inspector(processes, control, "anna");
  control.onTerminate = [](std::int32_t) {};
  EXPECT_EQ(actions.quitAndConfirm(inspector, usage), open);
  control.onTerminate = [this](std::int32_t pid) { end(pid); };
  EXPECT_EQ(actions.quitAndConfirm(inspector, usage), std::nullopt);
  EXPECT_EQ(actions.quitAndConfirm(inspector, usage), declined);
}

TEST(NotchDeckRules, KnowsWhoWouldStartAServerAgain) {
  using NotchDeckRules::supervisors;
  EXPECT_EQ(supervisors(std::vector<NotchDeckRules::Ancestor>{{5, me, "node /p/node_modules/.bin/next dev"},
                                                              {6, me, "/bin/sh -c nodemon x"},
                                                              {7, me, "bash -c 'npm run dev'"},
                                                              {8, 0, "nodemon"},
                                                              {1, me, "nodemon"},
                                                              {9, me, "node --watch x.js"},
                                                              {10, me, "gnome-terminal"}},
                        me),
            (std::vector<std::int32_t>{5, 7, 9}));
}

TEST_F(ProcessActions, WalksUpAtMostFiveParents) {
  for (std::int32_t pid = 100; pid < 110; ++pid) {
    run(pid, pid + 1, {"p", std::to_string(pid)});
  }
  const auto above = actions.ancestors(100);
  ASSERT_EQ(above.size(), 5U);
  EXPECT_EQ(above.front(), (NotchDeckRules::Ancestor{.pid = 101, .uid = me, .arguments = "p 101"}));
  processes.running[101].record.parent = 101;
  EXPECT_EQ(actions.ancestors(100).size(), 5U) << "even a loop ends";
}

}  // namespace
}  // namespace lumenary
