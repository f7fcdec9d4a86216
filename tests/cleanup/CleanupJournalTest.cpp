#include <gtest/gtest.h>

#include "cleanup/CleanupJournal.h"
#include "support/FakeFiles.h"

namespace lumenary {
namespace {

const std::string folder = "/support/cleanup-journals";

JournalEntry entry(const std::string& originalPath) {
  return {.act = JournalEntry::Act::restore,
          .transactionID = *UUID::parse("11111111-1111-4111-8111-111111111111"),
          .itemID = *UUID::parse("22222222-2222-4222-8222-222222222222"),
          .source = CleanupTransaction::Source::apps,
          .ruleID = "apps.\xFF",
          .measuredBytes = 4096,
          .intent = {.originalPath = originalPath,
                     .trashPath = "/trash/files/x",
                     .identity = {.device = ~std::uint64_t{0}, .inode = 7, .kind = FileKind::folder},
                     .date = *parseISO8601("2026-11-22T21:46:05Z")}};
}

std::string textOf(const std::vector<JournalEntry>& entries) {
  std::string text;
  for (const JournalEntry& each : entries) {
    text += encodeJournalEntry(each);
  }
  return text;
}

TEST(CleanupJournal, WritesALineAnEntry) {
  EXPECT_EQ(encodeJournalEntry(entry("/home/a\nb")),
            "{\"act\":\"restore\",\"date\":\"2026-11-22T21:46:05Z\",\"device\":18446744073709551615,\"inode\":7,"
            "\"itemID\":\"22222222-2222-4222-8222-222222222222\",\"kind\":\"folder\",\"measuredBytes\":4096,"
            "\"originalURL\":\"file:///home/a%0Ab/\",\"ruleID\":\"apps.\xEE\xBF\xBF\",\"source\":\"apps\","
            "\"transactionID\":\"11111111-1111-4111-8111-111111111111\",\"trashURL\":\"file:///trash/files/x/\"}\n");
}

TEST(CleanupJournal, ReadsEveryLineThatIsWholeAndItsOwn) {
  const std::string one = encodeJournalEntry(entry("/home/\xFF\n"));
  const std::string two = encodeJournalEntry(entry("/two"));
  std::string negative = two;
  negative.replace(negative.find("4096"), 4, "-4096");
  const struct {
    const char* name;
    std::string text;
    std::string read;
    std::string foreign{};
  } cases[] = {
      {"nothing", "", ""},
      {"two lines", one + two, one + two},
      {"a last line that was cut", one + two.substr(0, 40), one},
      {"a last line without its end", one + two.substr(0, two.size() - 1), one},
      {"a damaged line between", one + "{\"act\":\n" + two, one + two, "{\"act\":\n"},
      {"another kind of line", "[]\n{}\n" + two, two, "[]\n{}\n"},
      {"a negative size", negative + one, one, negative},
  };
  for (const auto& [name, text, read, foreign] : cases) {
    const auto journal = decodeJournal(text);
    ASSERT_TRUE(journal) << name;
    EXPECT_EQ(textOf(journal->entries), read) << name;
    EXPECT_EQ(journal->foreignLines, foreign) << name;
  }
}

TEST(CleanupJournal, IsMadeAtTheFirstIntentAndLockedWhileTheActRuns) {
  FakeFiles files;
  CleanupJournal journal(files, "/support");
  CleanupJournal::Recorder recorder(journal, entry(""));
  EXPECT_EQ(files.calls, std::vector<std::string>{});
  ASSERT_TRUE(recorder.intend(entry("/one").intent));
  ASSERT_TRUE(recorder.intend(entry("/two").intent));
  EXPECT_EQ(files.calls, (std::vector<std::string>{"makeFolders " + folder, "lock " + folder + "/lock",
                                                   "grow " + folder, "append " + folder, "append " + folder}));
  ASSERT_EQ(files.growing.size(), 1U);
  EXPECT_EQ(files.contents[*files.growing.begin()], textOf({entry("/one"), entry("/two")}));
}

TEST(CleanupJournal, GoesWhereItIsFinishedAndNotKept) {
  for (const auto& [isKept, isFinished] : {std::pair(false, true), std::pair(true, true), std::pair(false, false)}) {
    FakeFiles files;
    {
      CleanupJournal journal(files, "/support");
      ASSERT_TRUE(CleanupJournal::Recorder(journal, entry("")).intend(entry("/one").intent));
      if (isKept) {
        journal.keepForRecovery();
      }
      if (isFinished) {
        journal.finish();
      }
    }
    EXPECT_TRUE(files.growing.empty());
    EXPECT_EQ(files.contents.size(), isFinished && !isKept ? 1U : 2U) << "the lock, and the journal";
  }
}

TEST(CleanupJournal, AnIntentThatCannotBeWrittenIsAnError) {
  const struct {
    std::string call;
    int error;
    bool isWritten;
  } cases[] = {{"makeFolders " + folder, EROFS, false},
               {"lock " + folder + "/lock", EAGAIN, false},
               {"lock " + folder + "/lock", ENOLCK, true},
               {"grow " + folder, ENOSPC, false},
               {"append " + folder, EIO, false}};
  for (const auto& [call, error, isWritten] : cases) {
    FakeFiles files;
    files.failures[call] = error;
    CleanupJournal journal(files, "/support");
    const auto intended = CleanupJournal::Recorder(journal, entry("")).intend(entry("/one").intent);
    EXPECT_EQ(intended.has_value(), isWritten) << call;
    EXPECT_EQ(intended ? error : intended.error().code, error) << call;
  }
}

}  // namespace
}  // namespace lumenary
