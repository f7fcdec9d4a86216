#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "monitoring/PortInspector.h"
#include "platform/linux/LinuxFileReader.h"
#include "support/FakeProcesses.h"
#include "support/TemporaryHome.h"

namespace lumenary {
namespace {

using Optional = std::optional<std::string>;

TEST(PortInspector, ShortensCommandLines) {
  const std::vector<std::pair<std::vector<std::string>, Optional>> cases = {
      {{"node", "/x/y/node_modules/.bin/vite", "--port", "3000"}, "vite --port 3000"},
      {{"/usr/bin/python3", "-m", "http.server", "8000"}, "http.server 8000"},
      {{"python3.11", "--flag", "a", "b", "c", "d", "e"}, "a b c d"},
      {{"node"}, "node"},
      {{"sh", "--"}, "--"},
      {{}, std::nullopt},
      {{""}, std::nullopt},
      {{std::string(48, 'a')}, std::string(48, 'a')},
      {{std::string(49, 'a')}, std::string(47, 'a') + "…"},
      {{"ü" + std::string(48, 'a')}, "ü" + std::string(46, 'a') + "…"},
      {{"evil\x1b[2J\n"}, "evil\uFFFD[2J\uFFFD"},
  };
  for (const auto& [arguments, command] : cases) {
    EXPECT_EQ(PortInspector::shortCommand(arguments), command);
  }
}

TEST(PortInspector, FindsTheProjectOfAFolder) {
  TemporaryHome home;
  const std::string& root = home.root();
  home.write("Code/app/package.json", "{}");
  home.write("Code/app/src/main.js", "");
  home.write("Code/repo/.git/HEAD", "");
  home.write("Desktop/plain/x", "");
  home.write("package.json", "not below the home folder");
  const FakeProcesses processes;
  const LinuxFileReader files;
  const PortInspector ports(processes, processes, files, root);
  const std::vector<std::pair<std::string, Optional>> cases = {
      {root + "/Code/app/src", root + "/Code/app"},
      {root + "/Code/repo", root + "/Code/repo"},
      {root + "/Desktop/plain", root + "/Desktop/plain"},
      {root + "/gone/deeper", root + "/gone/deeper"},
      {root + "/.config/tool", std::nullopt},
      {root + "/Code/app/.cache/x", std::nullopt},
      {root + "/Library/x", std::nullopt},
      {root + "/Library", root + "/Library"},
      {root, std::nullopt},
      {root + "er/x", std::nullopt},
      {"/tmp", std::nullopt},
  };
  for (const auto& [path, project] : cases) {
    EXPECT_EQ(ports.projectRoot(path), project) << path;
  }
}

TEST(PortInspector, KnowsADevelopersServer) {
  const auto entry = [](const char* name, std::int64_t port, Optional project) {
    return PortEntry{.processName = name, .port = port, .projectRoot = std::move(project)}.isDevServer();
  };
  EXPECT_TRUE(entry("node", 3000, "/home/anna/Code/app"));
  EXPECT_FALSE(entry("node", 3000, std::nullopt));
  EXPECT_FALSE(entry("node", 5353, "/p"));
  EXPECT_FALSE(entry("node", 5037, "/p"));
  EXPECT_FALSE(entry("ADB", 3000, "/p"));
}

TEST(PortInspector, ListsEachPortOfEachProcessOnce) {
  TemporaryHome home;
  FakeProcesses processes;
  const Date started{std::chrono::seconds(77)};
  processes.running[50] = {.record = {.pid = 50, .parent = 1, .uid = 1000, .startedAt = started},
                           .name = "node",
                           .folder = home.root() + "/app",
                           .arguments = {"node", "server.js"}};
  processes.sockets = {{SocketProtocol::tcp, "::", 3000, 1000, 7},
                       {SocketProtocol::tcp, "0.0.0.0", 3000, 1000, 8},  // the same process, and the same words
                       {SocketProtocol::udp, "127.0.0.1", 3000, 1000, 9},
                       {SocketProtocol::tcp, "::1", 22, 0, 10},
                       {SocketProtocol::tcp, "", 80, 33, 11}};
  processes.held = {{50, 7, 3}, {50, 8, 4}, {50, 9, 5}, {51, 9, 5}, {60, 11, 3}};
  const LinuxFileReader files;
  const PortEntry server{.processName = "node",
                         .pid = 50,
                         .protocolName = "TCP",
                         .address = "*",
                         .port = 3000,
                         .projectRoot = home.root() + "/app",
                         .command = "server.js",
                         .startedAt = started,
                         .ownerUID = 1000};
  PortEntry datagrams = server;
  datagrams.protocolName = "UDP";
  datagrams.address = "127.0.0.1";
  const PortEntry vanished{
      .processName = "PID 51", .pid = 51, .protocolName = "UDP", .address = "127.0.0.1", .port = 3000};
  const PortEntry unseen{
      .processName = "Unknown process", .protocolName = "TCP", .address = "::1", .port = 22, .ownerUID = 0};
  const PortEntry nameless{.processName = "PID 60", .pid = 60, .protocolName = "TCP", .address = "*", .port = 80};
  EXPECT_EQ(PortInspector(processes, processes, files, home.root()).inspect(),
            (std::vector<PortEntry>{unseen, nameless, server, vanished, datagrams}));
}

TEST(PortInspector, LooksAtAllProcessesOnlyWhenSomethingChanged) {
  FakeProcesses processes;
  processes.sockets = {{SocketProtocol::tcp, "::", 3000, 1000, 7}};
  processes.held = {{50, 7, 3}};
  const LinuxFileReader files;
  PortInspector ports(processes, processes, files, "/home/anna");
  struct Step {
    const char* name;
    int second;
    std::function<void()> change;
    int looks;
  };
  const std::vector<Step> steps = {
      {"the first time", 0, [] {}, 1},
      {"nothing happened", 29, [] {}, 1},
      {"half a minute later", 30, [] {}, 2},
      {"another socket", 31, [&] { processes.sockets.push_back({SocketProtocol::udp, "::", 53, 0, 8}); }, 3},
      {"nothing happened, and one can't be seen", 32, [] {}, 3},
      {"another process has it", 33, [&] { processes.held.front().pid = 51; }, 4},
      {"the clock was set back", 0, [] {}, 5},
  };
  for (const Step& step : steps) {
    step.change();
    EXPECT_EQ(ports.listeningPorts(Date(std::chrono::seconds(step.second))).size(), processes.sockets.size());
    EXPECT_EQ(processes.looks, step.looks) << step.name;
  }
}

}  // namespace
}  // namespace lumenary
