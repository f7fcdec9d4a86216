#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <vector>

#include "base/AppFormatting.h"
#include "cleanup/CleanupJournal.h"
#include "cleanup/command/CleanupCommand.h"
#include "cleanup/command/Options.h"
#include "storage/CleanupTransaction.h"
#include "support/FakePlatform.h"
#include "support/HookedReader.h"
#include "support/TemporaryHome.h"
#include "support/TimeZone.h"

namespace lumenary::CleanupCommand {
namespace {

using Arguments = std::vector<std::string>;
using Item = CleanupTransaction::Item;
using Strings = std::vector<std::string>;

Date noonOf(int year) { return std::chrono::sys_days(std::chrono::year(year) / 6 / 15) + std::chrono::hours(12); }

class CleanupCommandTest : public testing::Test {
 protected:
  CleanupCommandTest() {
    home.build({{"Code/app/package.json"},
                {"Code/app/node_modules/a.js", 300'000},
                {"Code/web/package.json"},
                {"Code/web/dist/a.js", 100'000},
                {"Code/web/notes"},
                {"here", LinkTo{"Code"}}});
    home.setAllModified("Code/app", noonOf(2023));
    home.setAllModified("Code/web", noonOf(2022));
  }

  std::int32_t run(const Arguments& arguments) { return CleanupCommand::run(arguments, fake.platform); }

  std::string row(std::string_view date, const std::string& artifact, const std::string& note = "") const {
    std::string text = AppFormatting::bytes(home.allocatedBytes({artifact + "/a.js"}));
    text.resize(11, ' ');
    text += date;
    text.resize(24, ' ');
    return text + home.path(artifact) + note + "\n";
  }
  std::string bytes(std::initializer_list<std::string_view> files) const {
    return AppFormatting::bytes(home.allocatedBytes(files)) + "\n";
  }

  std::string logPath() const { return home.places().support + "/cleanup-transactions.json"; }
  std::vector<CleanupTransaction> log() {
    return decodeCleanupTransactions(fake.files.contents[logPath()]).value_or(std::vector<CleanupTransaction>());
  }
  /// "outcome message trash" of each item on record.
  Strings record() {
    Strings lines;
    for (const CleanupTransaction& transaction : log()) {
      for (const Item& item : transaction.items) {
        lines.push_back(std::string(rawValue(item.outcome)) + " " + item.message + " " +
                        item.trashURL.value_or(FileURL{"-"}).path);
      }
    }
    return lines;
  }
  /// How many journals stay on the disk.
  std::ptrdiff_t journals() const {
    return std::ranges::count_if(fake.files.contents,
                                 [](const auto& file) { return file.first.ends_with(CleanupJournal::fileExtension); });
  }

  const TimeZone zone{"UTC0"};
  TemporaryHome home;
  FakePlatform fake{home.places(), noonOf(2026)};
};

TEST_F(CleanupCommandTest, EndsWithTwoWhereItIsNotToldWhatToDo) {
  struct {
    Arguments arguments;
    std::string errors;
  } const cases[] = {
      {{"--trash"}, "--trash needs --days.\n" + std::string(usage)},
      {{"--\x1b[2J"}, "Unknown option: --\uFFFD[2J\n" + std::string(usage)},
      {{}, "No code folder yet. Choose one in the app, or pass --root PATH.\n"},
      {{"--root", home.path("none")}, "Not a folder: " + home.path("none") + "\n"},
      {{"--root", home.path("Code/web/notes")}, "Not a folder: " + home.path("Code/web/notes") + "\n"},
      {{"--root", "/no\n\x1b[2J"}, "Not a folder: /no\uFFFD\uFFFD[2J\n"},
      {{"--root", "/none/../../tmp"}, "Not a folder: /tmp\n"},
      {{"--root", "~nobody"}, "Not a folder: " + std::filesystem::current_path().string() + "/~nobody\n"},
      {{"--root", "", "--days", "1", "--trash"}, "Not a folder: \n"},
  };
  for (const auto& each : cases) {
    fake.terminal.errors.clear();
    EXPECT_EQ(run(each.arguments), wrongUsage);
    EXPECT_EQ(fake.terminal.errors, each.errors);
  }
  EXPECT_EQ(fake.terminal.output, "");
  EXPECT_EQ(fake.files.calls, Strings());
  EXPECT_EQ(fake.trash.calls, Strings());
}

TEST_F(CleanupCommandTest, EndsWithOneWhereItCannotReadWhereToLook) {
  fake.defaults.failure = "The settings can't be read: Input/output error.";
  EXPECT_EQ(run({}), failed);
  EXPECT_EQ(fake.terminal.errors, "The settings can't be read: Input/output error. Pass --root PATH.\n");
  const LinuxFileReader real;
  for (const auto call :
       {HookedReader::Call::openFolder, HookedReader::Call::nextEntries, HookedReader::Call::attributes}) {
    const auto fail = [call](HookedReader::Call made, std::string_view name) {
      const bool isInside = made != HookedReader::Call::attributes || name == ".";
      return made == call && isInside ? std::optional(SystemError{EACCES}) : std::nullopt;
    };
    fake.platform.reader = std::make_unique<HookedReader>(real, fail);
    fake.terminal.errors.clear();
    EXPECT_EQ(run({"--root", "~/Code"}), failed);
    EXPECT_EQ(fake.terminal.errors, "The folder can't be read: " + home.path("Code") + ": Permission denied\n");
  }
  EXPECT_EQ(fake.terminal.output, "");
}

TEST_F(CleanupCommandTest, MovesNothingForAnotherPersonThanTheOwnerOfTheHomeFolder) {
  for (const std::string& foreign : {home.root(), home.places().dataHome}) {
    home.makeFolder(".local/share");
    const LinuxFileReader real;
    fake.platform.reader = std::make_unique<HookedReader>(
        real, [](HookedReader::Call, std::string_view) { return std::optional<SystemError>(); },
        [&](std::string_view path, FileAttributes& found) { found.owner += path == foreign ? 1 : 0; });
    fake.terminal.errors.clear();
    EXPECT_EQ(run({"--root", "~/Code", "--days", "365", "--trash"}), wrongUsage);
    EXPECT_EQ(fake.terminal.errors,
              "Your data would be written to a folder of another user, so nothing is moved: " + foreign + "\n");
    EXPECT_EQ(run({"--root", "~/Code"}), finished) << "listing is for everybody";
    EXPECT_EQ(fake.files.calls, Strings());
    EXPECT_EQ(fake.trash.calls, Strings());
  }
}

TEST_F(CleanupCommandTest, ListsTheFolderThatIsMeantAndTouchesNothing) {
  fake.defaults.values["codeFolder"] = "~/Code";
  for (const Arguments& arguments : {Arguments{},
                                     {"--root", "~/Code/../Code/"},
                                     {"--root", home.path("here")},
                                     {"--root", "~"},
                                     {"--days", "365"}}) {
    fake.terminal.output.clear();
    EXPECT_EQ(run(arguments), finished);
    Strings rows = {row("3 yr. ago", "Code/app/node_modules"), row("4 yr. ago", "Code/web/dist")};
    if (std::ranges::count(arguments, "--days") != 0) {
      std::ranges::reverse(rows);
    }
    EXPECT_EQ(fake.terminal.output,
              rows[0] + rows[1] + "Found: 2 folders, " + bytes({"Code/app/node_modules/a.js", "Code/web/dist/a.js"}));
  }
  EXPECT_EQ(fake.terminal.errors, "");
  EXPECT_EQ(fake.files.calls, Strings());
  EXPECT_EQ(fake.trash.calls, Strings());
}

TEST_F(CleanupCommandTest, MovesTheOldestFirstAndRecordsThemAsOneAct) {
  EXPECT_EQ(run({"--root", "~/Code", "--days", "365", "--trash"}), finished);
  EXPECT_EQ(fake.terminal.output, row("4 yr. ago", "Code/web/dist") + row("3 yr. ago", "Code/app/node_modules") +
                                      "Moved to Trash: 2 folders, " +
                                      bytes({"Code/app/node_modules/a.js", "Code/web/dist/a.js"}));
  EXPECT_EQ(fake.terminal.errors, "");
  const std::int64_t webBytes = home.allocatedBytes({"Code/web/dist/a.js"});
  const std::int64_t appBytes = home.allocatedBytes({"Code/app/node_modules/a.js"});
  EXPECT_EQ(fake.trash.calls,
            (Strings{"move " + home.path("Code/web/dist") + " " + std::to_string(webBytes),
                     "move " + home.path("Code/app/node_modules") + " " + std::to_string(appBytes), "writeSizes"}));
  const std::vector<CleanupTransaction> transactions = log();
  ASSERT_EQ(transactions.size(), 1U);
  EXPECT_EQ(transactions[0].source, CleanupTransaction::Source::buildCleanup);
  EXPECT_EQ(transactions[0].timestamp, noonOf(2026));
  ASSERT_EQ(transactions[0].items.size(), 2U);
  const Item& first = transactions[0].items[0];
  const Item expected{.id = first.id,
                      .originalURL = {home.path("Code/web/dist"), true},
                      .trashURL = FileURL{"/trash/files/dist", true},
                      .measuredBytes = webBytes,
                      .ruleID = "developer.dist",
                      .outcome = Item::Outcome::movedToTrash,
                      .message = "Moved to Trash"};
  EXPECT_EQ(first, expected);
  EXPECT_EQ(journals(), 0);
}

TEST_F(CleanupCommandTest, WritesNothingWhereNothingIsSelected) {
  EXPECT_EQ(run({"--root", "~/Code", "--days", "9999", "--trash"}), finished);
  EXPECT_EQ(fake.terminal.output, "Moved to Trash: 0 folders, Zero KB\n");
  EXPECT_EQ(run({"--root", "~/Code", "--days", "9999", "--trash", "--json"}), finished);
  EXPECT_TRUE(fake.files.contents.empty());
  EXPECT_TRUE(fake.files.folders.empty());
  EXPECT_EQ(fake.trash.calls, Strings());
}

TEST_F(CleanupCommandTest, GoesOnBehindAFolderThatStays) {
  const TrashError unsettled{.refusal = TrashRefusal::noSpace, .cause = {ENOSPC}, .isSettled = false};
  fake.trash.failures[home.path("Code/web/dist")] = unsettled;
  EXPECT_EQ(run({"--root", "~/Code", "--days", "365", "--trash"}), failed);
  EXPECT_EQ(fake.terminal.output, row("4 yr. ago", "Code/web/dist", "  (not moved: " + unsettled.description() + ")") +
                                      row("3 yr. ago", "Code/app/node_modules") + "Moved to Trash: 1 folder, " +
                                      bytes({"Code/app/node_modules/a.js"}));
  EXPECT_EQ(record(), (Strings{"failed " + unsettled.description() + " -",
                               "movedToTrash Moved to Trash /trash/files/node_modules"}));
  EXPECT_EQ(journals(), 1) << "what the failed move left is put right at the next start";
}

TEST_F(CleanupCommandTest, TellsAMoveWhosePlaceIsUnknown) {
  fake.trash.tellsPlaces = false;
  EXPECT_EQ(run({"--root", "~/Code", "--days", "1200", "--trash"}), finished);
  EXPECT_EQ(fake.terminal.output, row("4 yr. ago", "Code/web/dist") + "Moved to Trash: 0 folders, Zero KB\n");
  EXPECT_EQ(record(), Strings{"failed Moved to Trash -"});
  fake.terminal.output.clear();
  EXPECT_EQ(run({"--root", "~/Code", "--days", "1200", "--trash", "--json"}), finished);
  EXPECT_NE(fake.terminal.output.find("\"moved\": true"), std::string::npos) << fake.terminal.output;
}

TEST_F(CleanupCommandTest, KeepsTheJournalOfARecordThatCannotBeSaved) {
  fake.files.failures["write " + logPath()] = ENOSPC;
  EXPECT_EQ(run({"--root", "~/Code", "--days", "1200", "--trash"}), finished);
  EXPECT_EQ(fake.terminal.errors,
            "The record of this run could not be saved yet. It is kept and saved at the next run.\n");
  EXPECT_EQ(journals(), 1);

  fake.files.failures.clear();
  fake.trash.calls.clear();
  EXPECT_EQ(run({"--root", "~/Code", "--days", "365", "--trash"}), finished);
  EXPECT_EQ(fake.trash.calls.at(0), "settle /trash/files/dist") << "before anything else moves";
  EXPECT_EQ(log().size(), 2U);
  EXPECT_EQ(journals(), 0);
}

TEST_F(CleanupCommandTest, SaysNothingOfARecordOfNothing) {
  fake.files.failures["write " + logPath()] = ENOSPC;
  fake.trash.failures[home.path("Code/web/dist")] = {.refusal = TrashRefusal::readOnlyVolume};
  EXPECT_EQ(run({"--root", "~/Code", "--days", "1200", "--trash"}), failed);
  EXPECT_EQ(fake.terminal.errors, "");
  fake.files.failures.clear();
  fake.trash.states["/trash/files/dist"] = ActState::atOrigin;
  EXPECT_EQ(run({"--root", "~/Code", "--days", "9999", "--trash"}), finished);
  EXPECT_EQ(record(), Strings{"failed Its volume is read-only, so it stays where it is. -"}) << "not an interruption";
}

TEST_F(CleanupCommandTest, EndsASearchThatIsStopped) {
  const LinuxFileReader real;
  fake.platform.reader = std::make_unique<HookedReader>(real, [&](HookedReader::Call call, std::string_view) {
    if (call == HookedReader::Call::nextEntries) {
      fake.interruption.source.request_stop();
    }
    return std::optional<SystemError>();
  });
  EXPECT_EQ(run({"--root", "~/Code", "--days", "365", "--trash"}), interrupted);
  EXPECT_EQ(fake.interruption.endings, 1);
  EXPECT_EQ(fake.terminal.output + fake.terminal.errors, "");
  EXPECT_EQ(fake.files.calls, Strings());
  EXPECT_EQ(fake.trash.calls, Strings());
}

TEST_F(CleanupCommandTest, FinishesTheMoveInHandWhereItIsStopped) {
  struct {
    Arguments more;
    std::string errors;
  } const cases[] = {{{}, "Stopped. 2 folders stay where they are.\n"},
                     {{"--days", "1200"}, "Stopped. 1 folder stays where it is.\n"}};
  home.build({{"Code/old/package.json"}, {"Code/old/build/a.js", 1000}});
  home.setAllModified("Code/old", noonOf(2021));
  for (const auto& each : cases) {
    FakePlatform stopped(home.places(), noonOf(2026));
    stopped.trash.aroundMove = [&] { stopped.interruption.source.request_stop(); };
    Arguments arguments = {"--root", "~/Code", "--days", "365", "--trash"};
    arguments.insert(arguments.end(), each.more.begin(), each.more.end());
    EXPECT_EQ(CleanupCommand::run(arguments, stopped.platform), finished);
    EXPECT_EQ(stopped.terminal.output,
              row("5 yr. ago", "Code/old/build") + "Moved to Trash: 1 folder, " + bytes({"Code/old/build/a.js"}));
    EXPECT_EQ(stopped.terminal.errors, each.errors);
    EXPECT_EQ(stopped.trash.calls.size(), 2U) << "one move, and the sizes";
    const auto transactions = decodeCleanupTransactions(stopped.files.contents[logPath()]);
    EXPECT_EQ(transactions->at(0).items.size(), 1U);
    EXPECT_EQ(stopped.interruption.endings, 1);
  }
}

TEST_F(CleanupCommandTest, SaysThatTheListCouldNotBeWritten) {
  fake.terminal.takesOutput = false;
  EXPECT_EQ(run({"--root", "~/Code"}), failed);
  EXPECT_EQ(fake.terminal.errors, "The list could not be written.\n");
}

}  // namespace
}  // namespace lumenary::CleanupCommand
