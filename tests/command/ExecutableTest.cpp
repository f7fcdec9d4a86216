#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <map>

#include "cleanup/command/Options.h"
#include "storage/CleanupTransaction.h"
#include "support/ProgramRun.h"
#include "support/TemporaryHome.h"

// The program itself, in a home of its own.

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define LUMENARY_UNDER_SANITIZER
#endif
#endif

namespace lumenary {
namespace {

using Kind = TracedProgram::Stop::Kind;

const Date longAgo = std::chrono::sys_days(std::chrono::year(2001) / 6 / 15);

class Executable : public testing::Test {
 protected:
  Executable() {
    home.build({{"Code/app/package.json"}, {"Code/app/node_modules/a.js", 1000}});
    home.setAllModified("Code", longAgo);
  }

  ProgramRun run(const std::vector<std::string>& arguments) const { return runProgram(home.root(), arguments); }

  TemporaryHome home;
};

TEST_F(Executable, IsTheCommandByItsFirstArgumentAlone) {
  const std::string desktop = "The desktop face isn't in this build; the command is `Lumenary cleanup`.\n";
  struct {
    std::vector<std::string> arguments;
    std::string errors;
  } const cases[] = {
      {{}, desktop},
      {{"Cleanup"}, desktop},
      {{"--cleanup"}, desktop},
      {{"cleanup "}, desktop},
      {{"--json", "cleanup"}, desktop},
      {{"cleanup"}, "No code folder yet. Choose one in the app, or pass --root PATH.\n"},
      {{"cleanup", "cleanup"}, "Unknown option: cleanup\n" + std::string(CleanupCommand::usage)},
  };
  for (const auto& each : cases) {
    const ProgramRun ended = run(each.arguments);
    EXPECT_TRUE(ended.exitedWith(2)) << ended.waitStatus;
    EXPECT_EQ(ended.errors, each.errors);
    EXPECT_EQ(ended.output, "");
  }
  EXPECT_EQ(namesIn(home.root()), std::set<std::string>{"Code"}) << "nothing was made";
}

TEST_F(Executable, ListsMovesAndRecords) {
  home.write(".config/Lumenary/defaults.json", R"({"codeFolder": "~/Code"})");
  const std::string artifact = home.path("Code/app/node_modules");
  const ProgramRun listed = run({"cleanup"});
  EXPECT_TRUE(listed.exitedWith(0)) << listed.waitStatus;
  EXPECT_NE(listed.output.find(artifact + "\nFound: 1 folder, "), std::string::npos) << listed.output;
  EXPECT_FALSE(standsAt(home.path(".local")));

  const ProgramRun moved = run({"cleanup", "--days", "30", "--trash"});
  EXPECT_TRUE(moved.exitedWith(0)) << moved.waitStatus;
  EXPECT_NE(moved.output.find(artifact + "\nMoved to Trash: 1 folder, "), std::string::npos) << moved.output;
  EXPECT_EQ(listed.errors + moved.errors, "");
  EXPECT_FALSE(standsAt(artifact));
  EXPECT_TRUE(standsAt(home.trash("files/node_modules/a.js")));
  const auto log = decodeCleanupTransactions(contentsOf(home.places().support + "/cleanup-transactions.json"));
  ASSERT_TRUE(log && log->size() == 1 && log->front().items.size() == 1);
  EXPECT_EQ(log->front().items.front().trashURL, FileURL(home.trash("files/node_modules"), true));
}

TEST_F(Executable, TellsAFolderThatStays) {
  home.build({{".local/share/Trash"}});
  const ProgramRun ended = run({"cleanup", "--root", home.path("Code"), "--days", "30", "--trash"});
  EXPECT_TRUE(ended.exitedWith(1)) << ended.waitStatus;
  EXPECT_NE(ended.output.find("  (not moved: "), std::string::npos) << ended.output;
  EXPECT_TRUE(standsAt(home.path("Code/app/node_modules/a.js")));
}

TEST_F(Executable, TellsThatItHasNoOutput) {
  const ProgramRun ended = runProgram(home.root(), {"cleanup", "--root", home.path("Code")}, [] {
    ::close(STDIN_FILENO);
    ::close(STDOUT_FILENO);
  });
  EXPECT_TRUE(ended.exitedWith(1)) << ended.waitStatus;
  EXPECT_EQ(ended.errors, "The list could not be written.\n");
}

#ifndef LUMENARY_UNDER_SANITIZER

TEST_F(Executable, HoldsNoLibraryThatAListingDoesNotNeed) {
  TracedProgram program(home.root(), {"cleanup", "--root", home.path("Code")});
  if (!program.isTraced()) {
    GTEST_SKIP() << "This system allows no tracing.";
  }
  auto stop = program.next();
  for (; stop.kind != Kind::programEnds && stop.kind != Kind::programEnded; stop = program.next()) {
    program.resume(stop);
  }
  const std::string maps = program.maps();
  EXPECT_NE(maps.find("/Lumenary\n"), std::string::npos) << maps;
  for (const char* library : {"simdjson", "Qt", "libX", "xcb", "wayland", "libGL", "libEGL", "gtk", "dbus"}) {
    EXPECT_EQ(maps.find(library), std::string::npos) << library;
  }
}

TEST_F(Executable, EndsByControlCWithoutAnyOutput) {
  TracedProgram program(home.root(), {"cleanup", "--root", home.path("Code"), "--days", "30", "--trash"});
  if (!program.isTraced()) {
    GTEST_SKIP() << "This system allows no tracing.";
  }
  // The first thread takes the signals. The second one searches: it is held back, as if the disk were slow.
  std::vector<pid_t> made;
  std::map<pid_t, TracedProgram::Stop> begun;
  while (made.size() < 2 || begun.size() < 2) {
    const auto stop = program.next();
    ASSERT_NE(stop.kind, Kind::programEnded);
    if (stop.kind == Kind::threadBegins) {
      begun.emplace(stop.thread, stop);
      continue;
    }
    if (stop.kind == Kind::threadMade) {
      made.push_back(stop.made);
    }
    program.resume(stop);
  }
  program.resume(begun.at(made[0]));
  EXPECT_NE(program.awaitOnTerminal("found").find("\r\x1b[KLooking for projects… 0 found"), std::string::npos);
  program.pressControlC();
  // Once it has asked the others to stop, the first thread takes a second Ctrl-C with its plain effect.
  EXPECT_TRUE(program.awaitUnblocked(made[0], SIGINT));
  program.resume(begun.at(made[1]));
  auto stop = program.next();
  for (; stop.kind != Kind::programEnded; stop = program.next()) {
    program.resume(stop);
  }
  const ProgramRun ended{.waitStatus = stop.waitStatus, .output = program.output(), .errors = program.restOfTerminal()};
  EXPECT_TRUE(ended.wasKilledBy(SIGINT)) << ended.waitStatus;
  EXPECT_EQ(ended.output, "");
  EXPECT_TRUE(ended.errors.ends_with("\r\x1b[K")) << "the line of progress is gone: " << ended.errors;
  EXPECT_TRUE(standsAt(home.path("Code/app/node_modules/a.js")));
  EXPECT_FALSE(standsAt(home.path(".local")));
}

#endif

}  // namespace
}  // namespace lumenary
