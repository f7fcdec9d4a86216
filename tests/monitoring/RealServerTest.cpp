#include <arpa/inet.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "monitoring/NotchProcessActions.h"
#include "platform/linux/LinuxAppControl.h"
#include "platform/linux/LinuxFileReader.h"
#include "platform/linux/LinuxProcessReader.h"
#include "platform/linux/LinuxSocketReader.h"
#include "platform/linux/LinuxToolRunner.h"
#include "support/FakeProcesses.h"
#include "support/TemporaryHome.h"

namespace lumenary {
namespace {

/// A listening server of perl in a project folder, alone or under another process. Each start of a server writes its
/// process id and port into a pipe.
constexpr const char* serverScript = R"(
use IO::Socket::INET; $| = 1;
$SIG{TERM} = 'IGNORE' if $ARGV[1] eq 'deaf';
my $socket = IO::Socket::INET->new(LocalAddr => '127.0.0.1', LocalPort => $ARGV[0], Listen => 1, ReuseAddr => 1);
print "$$ ", $socket->sockport, "\n";
sleep 1000 while 1;
)";
/// Starts the server, and starts it again when it ends, whatever is said to it.
constexpr const char* watcherScript = R"(
use POSIX;
my ($server, $port, @rest) = @ARGV;
$SIG{TERM} = 'IGNORE' if "@rest" eq 'deaf';
my $child = 0;
$SIG{TERM} = sub { kill 'TERM', $child; exit 0 } if "@rest" eq '--watch';
while (1) {
  $child = fork;
  if (!$child) { $SIG{TERM} = 'DEFAULT'; exec $^X, $server, $port, 'plain' }
  waitpid $child, 0;
}
)";

class RealServer : public ::testing::Test {
 protected:
  RealServer() {
    home_.write("project/package.json", "{}");
    home_.write("project/server.pl", serverScript);
    home_.write("project/watcher.pl", watcherScript);
    [[maybe_unused]] const int made = ::pipe2(output_.data(), 0);
  }
  ~RealServer() override {
    if (first_ > 0) {
      // Its number is nobody else's as long as nobody asked how it ended, and so is that of its group.
      ::kill(-first_, SIGKILL);
      ::waitpid(first_, nullptr, 0);
    }
    for (const int end : output_) {
      ::close(end);
    }
  }

  /// Runs perl with a script and its arguments in the project, and waits until a server listens.
  void start(const std::vector<std::string>& words) {
    first_ = ::fork();
    if (first_ == 0) {
      ::setpgid(0, 0);
      ::dup2(output_[1], STDOUT_FILENO);
      ::close(output_[0]);
      [[maybe_unused]] const int moved = ::chdir(home_.path("project").c_str());
      std::vector<char*> arguments = {const_cast<char*>("/usr/bin/perl")};
      for (const std::string& word : words) {
        arguments.push_back(const_cast<char*>(word.c_str()));
      }
      arguments.push_back(nullptr);
      ::execv(arguments[0], arguments.data());
      ::_exit(1);
    }
    waitForServer();
  }

  /// Waits until a server says that it listens.
  void waitForServer() {
    std::string line;
    for (char byte = 0; ::read(output_[0], &byte, 1) == 1 && byte != '\n';) {
      line += byte;
    }
    server_ = std::stoi(line);
    port_ = std::stoi(line.substr(line.find(' ') + 1));
  }

  PortEntry shown() const {
    const auto ports = ports_.inspect();
    const auto found = std::ranges::find(ports, std::int64_t{port_}, &PortEntry::port);
    return found == ports.end() ? PortEntry() : *found;
  }

  bool isListening() const {
    const auto ports = ports_.inspect();
    return std::ranges::find(ports, std::int64_t{port_}, &PortEntry::port) != ports.end();
  }

  /// Asks how the first process ended, so that nothing of it is left.
  void forget() { ::waitpid(std::exchange(first_, -1), nullptr, 0); }

  TemporaryHome home_;
  FakeRegistry registry_;
  LinuxProcessReader processes_{registry_};
  LinuxSocketReader sockets_;
  LinuxFileReader files_;
  LinuxToolRunner tools_;
  LinuxAppControl control_{tools_, processes_, registry_, ""};
  PortInspector ports_{sockets_, processes_, files_, home_.root()};
  std::array<int, 2> output_{};
  pid_t first_ = -1;
  pid_t server_ = -1;
  int port_ = 0;

  NotchProcessActions actions(NotchProcessActions::Wait wait) {
    return {processes_, control_, ports_, {.uid = ::geteuid(), .pid = ::getpid()}, std::move(wait)};
  }
};

TEST_F(RealServer, IsFoundWithItsProjectAndStopped) {
  start({"server.pl", "0", "plain"});
  const PortEntry entry = shown();
  EXPECT_EQ(entry.pid, server_);
  EXPECT_EQ(entry.processName, "perl");
  EXPECT_EQ(entry.protocolName, "TCP");
  EXPECT_EQ(entry.address, "127.0.0.1");
  EXPECT_EQ(entry.projectRoot, home_.path("project"));
  EXPECT_EQ(entry.command, "perl server.pl 0 plain");
  EXPECT_EQ(entry.ownerUID, ::geteuid());
  EXPECT_TRUE(entry.isDevServer());

  const auto waitForTheEnd = [&](std::chrono::milliseconds) {
    siginfo_t info{};
    ::waitid(P_PID, static_cast<id_t>(server_), &info, WEXITED | WNOWAIT);
    return true;
  };
  EXPECT_EQ(actions(waitForTheEnd).stop(entry), (NotchActionResult{.title = "Server stopped"}));
  EXPECT_EQ(actions(waitForTheEnd).stop(entry).title, "Server changed or already stopped");
  forget();
}

TEST_F(RealServer, IsLeftAloneWhereItIgnoresTheRequest) {
  start({"server.pl", "0", "deaf"});
  EXPECT_EQ(actions([](auto) { return true; }).stop(shown()).title, "Server is still listening");
  EXPECT_TRUE(isListening());
}

TEST_F(RealServer, IsToldWhereSomethingStartsItAgain) {
  // Its port is free again for the next one to take.
  start({"watcher.pl", "server.pl", std::to_string(20000 + (::getpid() % 20000)), "plain"});
  const pid_t before = server_;
  const auto waitForTheNext = [&](std::chrono::milliseconds) {
    if (server_ == before) {
      waitForServer();
    }
    return true;
  };
  const std::string cameBack = ":" + std::to_string(port_) + " came back";
  EXPECT_EQ(actions(waitForTheNext).stop(shown()).title, cameBack);
  EXPECT_NE(server_, before);
}

TEST_F(RealServer, IsStoppedWithWhatWouldStartItAgain) {
  start({"watcher.pl", "server.pl", "0", "--watch"});
  const auto waitForTheEnd = [&](std::chrono::milliseconds) {
    siginfo_t info{};
    ::waitid(P_PID, static_cast<id_t>(first_), &info, WEXITED | WNOWAIT);
    while (processes_.record(server_)) {
    }
    return true;
  };
  EXPECT_EQ(actions(waitForTheEnd).stop(shown()).title, "Server stopped");
  EXPECT_FALSE(isListening());
  forget();
}

TEST_F(RealServer, IsNeverThisProgram) {
  const int own = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in place{};
  place.sin_family = AF_INET;
  place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof place;
  ASSERT_EQ(::bind(own, reinterpret_cast<sockaddr*>(&place), length), 0);
  ASSERT_EQ(::listen(own, 1), 0);
  ::getsockname(own, reinterpret_cast<sockaddr*>(&place), &length);
  port_ = ntohs(place.sin_port);
  PortEntry entry = shown();
  EXPECT_EQ(entry.pid, ::getpid());
  entry.projectRoot = home_.path("project");
  EXPECT_EQ(actions([](auto) { return true; }).stop(entry).title, "Server changed or already stopped");
  ::close(own);
}

}  // namespace
}  // namespace lumenary
