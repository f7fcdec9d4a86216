#include <gtest/gtest.h>
#include <unistd.h>

#include "cleanup/command/Options.h"
#include "storage/CleanupTransaction.h"
#include "support/ProgramRun.h"
#include "support/TemporaryHome.h"

// The program itself, in a home of its own.

namespace lumenary {
namespace {

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
  const std::string desktop =
      "There is no display here, so no window can open. `Lumenary cleanup` works without one.\n";
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
  const ProgramRun ended = runProgram(home.root(), {"cleanup", "--root", home.path("Code")}, {}, [] {
    ::close(STDIN_FILENO);
    ::close(STDOUT_FILENO);
  });
  EXPECT_TRUE(ended.exitedWith(1)) << ended.waitStatus;
  EXPECT_EQ(ended.errors, "The list could not be written.\n");
}

TEST_F(Executable, LoadsNothingThatAListingDoesNotNeed) {
  // The loader tells each library that it opens, those that are opened later included.
  const std::vector<std::string> telling = {"LD_DEBUG=files"};
  home.write(".config/Lumenary/defaults.json", "{}");
  EXPECT_NE(runProgram(home.root(), {"cleanup"}, telling).errors.find("simdjson"), std::string::npos);
  const ProgramRun ended = runProgram(home.root(), {"cleanup", "--root", home.path("Code")}, telling);
  for (const char* library : {"simdjson", "Qt", "libX", "xcb", "wayland", "libGL", "libEGL", "gtk", "dbus"}) {
    EXPECT_EQ(ended.errors.find(library), std::string::npos) << library;
  }
}

}  // namespace
}  // namespace lumenary
