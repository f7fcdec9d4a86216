#include <fcntl.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <functional>
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

using Text = const char*;

Places placesWith(Text home, Text data = {}, Text config = {}, Text cache = {}, Text state = {}) {
  std::map<std::string, Text> variables = {{"HOME", home},
                                           {"XDG_DATA_HOME", data},
                                           {"XDG_CONFIG_HOME", config},
                                           {"XDG_CACHE_HOME", cache},
                                           {"XDG_STATE_HOME", state}};
  return placesOf([&](Text name) { return variables[name]; });
}

TEST(LinuxPlaces, FollowVariablesThatAreAbsolute) {
  const Places usual{"/home/anna",
                     "",
                     "/home/anna/.local/share",
                     "/home/anna/.config",
                     "/home/anna/.cache",
                     "/home/anna/.local/state",
                     "/home/anna/.local/share/Lumenary",
                     "/home/anna/.config/Lumenary/defaults.json",
                     ::geteuid(),
                     "/home",
                     {"/media", "/run/media", "/mnt"},
                     true};
  const Places chosen{"/anna",
                      "",
                      "/data",
                      "/etc/anna",
                      "/cache",
                      "/state",
                      "/data/Lumenary",
                      "/etc/anna/Lumenary/defaults.json",
                      ::geteuid(),
                      "/home",
                      {"/media", "/run/media", "/mnt"},
                      true};
  EXPECT_EQ(placesWith("/home/anna/"), usual);
  EXPECT_EQ(placesWith("/home//anna", "", "config", "./cache", "~/state"), usual);
  EXPECT_EQ(placesWith("/anna", "/data/", "/etc/anna", "/cache", "/state"), chosen);
}

TEST(LinuxPlaces, TellWhereThePersonsHomeIsHidden) {
  for (const char* variable : {"FLATPAK_ID", "SNAP"}) {
    EXPECT_FALSE(placesOf([&](const char* name) {
                   return std::string_view(name) == variable ? "x" : nullptr;
                 }).hasFullDiskAccess);
  }
}

TEST(LinuxPlaces, KnowAHomeWithoutTheVariable) {
  const passwd* const user = ::getpwuid(::geteuid());
  if (user == nullptr) {
    GTEST_SKIP() << "This user is in no password database.";
  }
  EXPECT_EQ(placesWith(nullptr).home, user->pw_dir);
  EXPECT_EQ(placesWith("relative").home, user->pw_dir);
}

TEST(LinuxDefaults, ReadTextsFromOneSmallFile) {
  const std::pair<std::string, std::optional<std::string>> cases[] = {
      {R"({"codeFolder": "/code"})", "/code"},
      {R"({"panels": {"codeFolder": 1}, "codeFolder": "/caf\u00e9"})", "/caf\u00e9"},
      {"{\"codeFolder\": \"/not \uEFFF UTF-8\"}", "/not \xff UTF-8"},
      {R"({"codeFolder": 7})", {}},
      {R"({"codefolder": "/code"})", {}},
      {R"(["codeFolder"])", {}},
      {"", {}},
      {R"({"codeFolder": "/code"})" + std::string(std::size_t{1} << 20, ' '), {}}};
  FakeFiles files;
  const LinuxDefaults defaults(files, "/defaults.json");
  EXPECT_EQ(*defaults.string("codeFolder"), std::nullopt) << "no file yet";
  for (const auto& [text, expected] : cases) {
    files.contents["/defaults.json"] = text;
    EXPECT_EQ(*defaults.string("codeFolder"), expected) << text.substr(0, 60);
  }
  files.failures["read /defaults.json"] = EACCES;
  EXPECT_EQ(defaults.string("codeFolder").error(), "The settings can't be read: Permission denied.");
}

TEST(LinuxDefaults, ChangeOneKeyAndKeepTheOthersAsTheyAre) {
  const std::pair<std::string, std::string> cases[] = {
      {"", "{\n  \"a\": \"new \uEFFF\"\n}\n"},  // no file yet
      {R"({"b": [1, -2, 18446744073709551615, 1.5, 1.2345678901234568e20, true, null, {"c": "\u00e9\n"}], "a": {"old": 1}, "d": {}})",
       "{\n  \"b\": [\n    1,\n    -2,\n    18446744073709551615,\n    1.5,\n    1.2345678901234568e+20,\n    true,\n  "
       "  null,\n    {\n"
       "      \"c\": \"é\\n\"\n    }\n  ],\n  \"d\": {},\n  \"a\": \"new \uEFFF\"\n}\n"}};
  for (const auto& [before, after] : cases) {
    FakeFiles files;
    if (!before.empty()) {
      files.contents["/c/defaults.json"] = before;
    }
    LinuxDefaults defaults(files, "/c/defaults.json");
    ASSERT_TRUE(defaults.setString("a", "new \xFF"));
    EXPECT_EQ(files.contents["/c/defaults.json"], after);
    EXPECT_EQ(*defaults.string("a"), "new \xFF");
  }
}

TEST(LinuxDefaults, WriteNothingOverWhatIsNeitherUnderstoodNorKept) {
  FakeFiles files;
  LinuxDefaults defaults(files, "/c/defaults.json");
  const std::string& file = files.contents["/c/defaults.json"] = "{damaged";
  files.failures = {{"write /c/defaults.unreadable.json", ENOSPC}};
  EXPECT_FALSE(defaults.setString("a", "1"));
  files.failures = {{"read /c/defaults.json", EACCES}};
  EXPECT_FALSE(defaults.setString("a", "1"));
  files.failures = {{"lock /c/defaults.json.lock", EAGAIN}};
  EXPECT_FALSE(defaults.setString("a", "1"));
  EXPECT_EQ(file, "{damaged");
  files.failures.clear();
  EXPECT_TRUE(defaults.setString("a", "1"));
  EXPECT_EQ(*defaults.string("a"), "1");
  files.contents["/c/defaults.json"] = "[]";
  EXPECT_TRUE(defaults.setString("a", "2"));
  EXPECT_EQ(files.contents["/c/defaults.unreadable.json"], "{damaged") << "the first damage stays";
}

/// What the act answers while another file stands under a standard descriptor's number.
bool whileRedirected(int number, const Descriptor& other, const std::function<bool()>& act) {
  const Descriptor former(::dup(number));
  ::dup2(other.number(), number);
  const bool answer = act();
  ::dup2(former.number(), number);
  return answer;
}

TEST(LinuxTerminal, ShowsProgressOnlyWhereALineCanBeCleared) {
  const Descriptor terminal(::posix_openpt(O_RDWR | O_NOCTTY));
  ASSERT_EQ(::grantpt(terminal.number()) + ::unlockpt(terminal.number()), 0);
  const Descriptor shown(::open(::ptsname(terminal.number()), O_RDWR | O_NOCTTY));
  const Descriptor file(::open("/dev/null", O_RDWR));
  const std::tuple<const Descriptor&, const char*, const char*, bool> cases[] = {
      {shown, "xterm", nullptr, true}, {shown, "xterm", "", true},  {shown, "xterm", "1", false},
      {shown, "dumb", nullptr, false}, {shown, nullptr, "", false}, {shown, "", nullptr, false},
      {file, "xterm", nullptr, false}};
  for (const auto& [error, type, noColor, expected] : cases) {
    // In a process of its own, as the environment belongs to the whole process.
    const auto answer = [&] {
      type == nullptr ? ::unsetenv("TERM") : ::setenv("TERM", type, 1);
      noColor == nullptr ? ::unsetenv("NO_COLOR") : ::setenv("NO_COLOR", noColor, 1);
      ::_exit(whileRedirected(STDERR_FILENO, error, [] { return LinuxTerminal().showsProgress(); }) ? 1 : 0);
    };
    EXPECT_EXIT(answer(), testing::ExitedWithCode(expected ? 1 : 0), "");
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
  EXPECT_TRUE(whileRedirected(STDOUT_FILENO, in, [&] { return LinuxTerminal().writeOutput(text); }));
  in = Descriptor();
  reader.join();
  EXPECT_TRUE(received == text) << received.size() << " bytes";
}

TEST(LinuxTerminal, TellsThatTheOutputIsFull) {
  const Descriptor full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
  ASSERT_TRUE(bool(full));
  EXPECT_FALSE(whileRedirected(STDOUT_FILENO, full, [] { return LinuxTerminal().writeOutput("x"); }));
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

/// As a person does whose first Ctrl-C takes too long.
void takeSignalTwice(int number) {
  LinuxInterruption interruption;
  std::binary_semaphore stopped(0);
  const std::stop_callback noted(interruption.token(), [&] { stopped.release(); });
  ::kill(::getpid(), number);
  stopped.acquire();
  ::alarm(60);
  for (;;) {
    ::kill(::getpid(), number);
  }
}

TEST(LinuxInterruptionDeathTest, LetsASecondSignalEndTheProcessAtOnce) {
  EXPECT_EXIT(takeSignalTwice(SIGINT), testing::KilledBySignal(SIGINT), "");
}

TEST(LinuxInterruption, LeavesAnIgnoredSignalIgnoredAndPutsTheOthersBackWhenItGoes) {
  const auto former = ::signal(SIGHUP, SIG_IGN);
  sigset_t before;
  sigset_t taken;
  sigset_t after;
  ::pthread_sigmask(SIG_SETMASK, nullptr, &before);
  {
    const LinuxInterruption interruption;
    ::pthread_sigmask(SIG_SETMASK, nullptr, &taken);
  }
  ::pthread_sigmask(SIG_SETMASK, nullptr, &after);
  ::signal(SIGHUP, former);
  EXPECT_EQ(sigismember(&taken, SIGHUP), 0);
  EXPECT_EQ(sigismember(&taken, SIGTERM), 1);
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    EXPECT_EQ(sigismember(&before, number), sigismember(&after, number));
  }
}

}  // namespace
}  // namespace lumenary
