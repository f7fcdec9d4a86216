#include <fcntl.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <map>
#include <semaphore>
#include <thread>

#include "platform/Descriptor.h"
#include "platform/linux/LinuxDefaults.h"
#include "platform/linux/LinuxInterruption.h"
#include "platform/linux/LinuxPlaces.h"
#include "platform/linux/LinuxTerminal.h"
#include "support/FakeFiles.h"

namespace lumenary {
namespace {

Places placesWith(const std::map<std::string, std::string>& variables) {
  return placesOf([&](const char* name) -> const char* {
    const auto variable = variables.find(name);
    return variable == variables.end() ? nullptr : variable->second.c_str();
  });
}

TEST(LinuxPlaces, FollowVariablesThatAreAbsolute) {
  Places expected{.home = "/home/anna",
                  .dataHome = "/home/anna/.local/share",
                  .configHome = "/home/anna/.config",
                  .cacheHome = "/home/anna/.cache",
                  .stateHome = "/home/anna/.local/state",
                  .support = "/home/anna/.local/share/Lumenary",
                  .defaultsFile = "/home/anna/.config/Lumenary/defaults.json",
                  .userID = ::geteuid()};
  EXPECT_EQ(placesWith({{"HOME", "/home/anna/"}}), expected);
  EXPECT_EQ(placesWith({{"HOME", "/home//anna"},
                        {"XDG_DATA_HOME", ""},
                        {"XDG_CONFIG_HOME", "config"},
                        {"XDG_CACHE_HOME", "./cache"},
                        {"XDG_STATE_HOME", "~/state"}}),
            expected);
  expected.dataHome = "/data";
  expected.support = "/data/Lumenary";
  expected.configHome = "/etc/anna";
  expected.defaultsFile = "/etc/anna/Lumenary/defaults.json";
  expected.cacheHome = "/cache";
  expected.stateHome = "/state";
  EXPECT_EQ(placesWith({{"HOME", "/home/anna"},
                        {"XDG_DATA_HOME", "/data/"},
                        {"XDG_CONFIG_HOME", "/etc/anna"},
                        {"XDG_CACHE_HOME", "/cache"},
                        {"XDG_STATE_HOME", "/state"}}),
            expected);
}

TEST(LinuxPlaces, KnowAHomeWithoutTheVariable) {
  const passwd* const user = ::getpwuid(::geteuid());
  if (user == nullptr) {
    GTEST_SKIP() << "This user is in no password database.";
  }
  EXPECT_EQ(placesWith({}).home, user->pw_dir);
  EXPECT_EQ(placesWith({{"HOME", "relative"}}).home, user->pw_dir);
}

TEST(LinuxDefaults, ReadTextsFromOneSmallFile) {
  struct {
    std::string text;
    std::optional<std::string> expected;
  } const cases[] = {
      {R"({"codeFolder": "/code"})", "/code"},
      {R"({"panels": {"codeFolder": 1}, "codeFolder": "/caf\u00e9"})", "/caf\u00e9"},
      {"{\"codeFolder\": \"/not \uEFFF UTF-8\"}", "/not \xff UTF-8"},
      {R"({"codeFolder": 7})", {}},
      {R"({"codefolder": "/code"})", {}},
      {R"({"codeFolder": "/code")", {}},
      {R"(["codeFolder"])", {}},
      {"", {}},
      {R"({"codeFolder": "/code"})" + std::string(std::size_t{1} << 20, ' '), {}},
  };
  FakeFiles files;
  const LinuxDefaults defaults(files, "/defaults.json");
  EXPECT_EQ(defaults.string("codeFolder"), std::nullopt) << "no file yet";
  for (const auto& each : cases) {
    files.contents["/defaults.json"] = each.text;
    EXPECT_EQ(defaults.string("codeFolder"), each.expected) << each.text.substr(0, 60);
  }
}

/// Another file under a standard descriptor's number, while the value lives.
class Redirected {
 public:
  Redirected(int number, const Descriptor& other) : number_(number), former_(::dup(number)) {
    ::dup2(other.number(), number);
  }
  ~Redirected() { ::dup2(former_.number(), number_); }
  Redirected(const Redirected&) = delete;
  Redirected& operator=(const Redirected&) = delete;

 private:
  int number_;
  Descriptor former_;
};

TEST(LinuxTerminal, ShowsProgressOnlyWhereALineCanBeCleared) {
  const Descriptor terminal(::posix_openpt(O_RDWR | O_NOCTTY));
  ASSERT_EQ(::grantpt(terminal.number()) + ::unlockpt(terminal.number()), 0);
  const Descriptor shown(::open(::ptsname(terminal.number()), O_RDWR | O_NOCTTY));
  const Descriptor file(::open("/dev/null", O_RDWR));
  struct {
    const Descriptor& error;
    const char* type;
    const char* noColor;
    bool expected;
  } const cases[] = {{shown, "xterm", nullptr, true}, {shown, "xterm", "", true},  {shown, "xterm", "1", false},
                     {shown, "dumb", nullptr, false}, {shown, nullptr, "", false}, {shown, "", nullptr, false},
                     {file, "xterm", nullptr, false}};
  for (const auto& each : cases) {
    // In a process of its own, as the environment belongs to the whole process.
    const auto answer = [&] {
      each.type == nullptr ? ::unsetenv("TERM") : ::setenv("TERM", each.type, 1);
      each.noColor == nullptr ? ::unsetenv("NO_COLOR") : ::setenv("NO_COLOR", each.noColor, 1);
      bool shows = false;
      {
        const Redirected error(STDERR_FILENO, each.error);
        shows = LinuxTerminal().showsProgress();
      }
      ::_exit(shows ? 1 : 0);
    };
    EXPECT_EXIT(answer(), testing::ExitedWithCode(each.expected ? 1 : 0), "");
  }
}

TEST(LinuxTerminal, WritesAllToAPipeThatDoesNotWait) {
  int ends[2];
  ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
  const Descriptor out(ends[0]);
  Descriptor in(ends[1]);
  ASSERT_EQ(::fcntl(in.number(), F_SETFL, O_NONBLOCK), 0);
  const std::string text(std::size_t{1} << 20, 'x');
  std::string received;
  std::thread reader([&] {
    char buffer[4096];
    for (ssize_t count = 0; (count = ::read(out.number(), buffer, sizeof buffer)) > 0;) {
      received.append(buffer, static_cast<std::size_t>(count));
    }
  });
  bool isWritten = false;
  {
    const Redirected output(STDOUT_FILENO, in);
    isWritten = LinuxTerminal().writeOutput(text);
  }
  in = Descriptor();
  reader.join();
  EXPECT_TRUE(isWritten);
  EXPECT_TRUE(received == text) << received.size() << " bytes";
}

TEST(LinuxTerminal, TellsThatTheOutputIsFull) {
  const Descriptor full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
  ASSERT_TRUE(bool(full));
  bool isWritten = true;
  {
    const Redirected output(STDOUT_FILENO, full);
    isWritten = LinuxTerminal().writeOutput("x");
  }
  EXPECT_FALSE(isWritten);
}

/// Sends this process the signal, waits for the stop request, and ends as an interrupted program does.
void takeSignalAndEnd(int number) {
  LinuxInterruption interruption;
  interruption.endProcessIfInterrupted();
  std::binary_semaphore stopped(0);
  const std::stop_callback noted(interruption.token(), [&] { stopped.release(); });
  ::kill(::getpid(), number);
  stopped.acquire();
  interruption.endProcessIfInterrupted();
  ::_exit(0);
}

TEST(LinuxInterruptionDeathTest, EndsTheProcessByTheSignalThatCame) {
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    EXPECT_EXIT(takeSignalAndEnd(number), testing::KilledBySignal(number), "");
  }
}

TEST(LinuxInterruption, LeavesAnIgnoredSignalIgnored) {
  const auto former = ::signal(SIGHUP, SIG_IGN);
  sigset_t taken;
  {
    const LinuxInterruption interruption;
    ::pthread_sigmask(SIG_SETMASK, nullptr, &taken);
  }
  ::signal(SIGHUP, former);
  EXPECT_EQ(sigismember(&taken, SIGHUP), 0);
  EXPECT_EQ(sigismember(&taken, SIGTERM), 1);
}

TEST(LinuxInterruption, PutsTheSignalsBackWhenItGoes) {
  sigset_t before;
  sigset_t after;
  ::pthread_sigmask(SIG_SETMASK, nullptr, &before);
  {
    const LinuxInterruption interruption;
  }
  ::pthread_sigmask(SIG_SETMASK, nullptr, &after);
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    EXPECT_EQ(sigismember(&before, number), sigismember(&after, number));
  }
}

}  // namespace
}  // namespace lumenary
