#include <gtest/gtest.h>

#include <limits>

#include "storage/CleanupTransaction.h"

namespace lumenary {
namespace {

using Item = CleanupTransaction::Item;
using Outcome = Item::Outcome;

constexpr auto text = R"([
  {
    "id": "6F9619FF-8B86-D011-B42D-00C04FC964FF",
    "items": [
      {
        "id": "11111111-1111-4111-8111-111111111111",
        "measuredBytes": 4096,
        "message": "Moved to Trash",
        "originalURL": "file:///home/person/a%20b/dist/",
        "outcome": "movedToTrash",
        "ruleID": "developer.dist",
        "ruleVersion": "1",
        "trashURL": "file:///trash/files/dist/"
      },
      {
        "id": "22222222-2222-4222-8222-222222222222",
        "measuredBytes": 0,
        "message": "No \"x\" \uEFFFhere.",
        "originalURL": "file:///home/person/%FF/build/",
        "outcome": "failed",
        "ruleID": "developer.build",
        "ruleVersion": "1"
      }
    ],
    "source": "buildCleanup",
    "timestamp": "2026-11-22T21:46:05Z"
  }
]
)";

CleanupTransaction transaction() {
  return {.id = *UUID::parse("6F9619FF-8B86-D011-B42D-00C04FC964FF"),
          .timestamp = *parseISO8601("2026-11-22T21:46:05Z"),
          .source = CleanupTransaction::Source::buildCleanup,
          .items = {{.id = *UUID::parse("11111111-1111-4111-8111-111111111111"),
                     .originalURL = {.path = "/home/person/a b/dist", .isFolder = true},
                     .trashURL = FileURL{.path = "/trash/files/dist", .isFolder = true},
                     .measuredBytes = 4096,
                     .ruleID = "developer.dist",
                     .outcome = Outcome::movedToTrash,
                     .message = "Moved to Trash"},
                    {.id = *UUID::parse("22222222-2222-4222-8222-222222222222"),
                     .originalURL = {.path = "/home/person/\xFF/build", .isFolder = true},
                     .trashURL = {},
                     .ruleID = "developer.build",
                     .outcome = Outcome::failed,
                     .message = "No \"x\" \xFFhere."}}};
}

std::string replaced(std::string json, std::string_view from, std::string_view to) {
  return json.replace(json.find(from), from.size(), to);
}

TEST(CleanupTransaction, StandsInTheLogAsSortedPrettyTextAndComesBackByteForByte) {
  EXPECT_EQ(encodeCleanupTransactions(std::vector{transaction()}), replaced(text, "\\uEFFF", "\uEFFF"));
  EXPECT_EQ(decodeCleanupTransactions(text), std::vector{transaction()});
  EXPECT_EQ(encodeCleanupTransactions({}), "[]\n");
}

TEST(CleanupTransaction, ReadingPassesOverWhatItDoesNotKnow) {
  const auto extended = replaced(text, "\"ruleVersion\"", "\"colour\": {\"red\": [1]}, \"ruleVersion\"");
  EXPECT_EQ(decodeCleanupTransactions(extended), std::vector{transaction()});
  const auto nullPlace = replaced(text, "\"failed\"", "\"failed\", \"trashURL\": null");
  EXPECT_EQ(decodeCleanupTransactions(nullPlace), std::vector{transaction()});
}

TEST(CleanupTransaction, OneWrongMemberMakesTheWholeLogUnreadable) {
  for (const std::string key : {"id", "items", "source", "timestamp", "measuredBytes", "message", "originalURL",
                                "outcome", "ruleID", "ruleVersion"}) {
    EXPECT_FALSE(decodeCleanupTransactions(replaced(text, '"' + key + '"', "\"other\""))) << key << " is missing";
  }
  const std::pair<const char*, const char*> changes[] = {{"4096", "\"4096\""},
                                                         {"11111111-1111", "1111-11111111"},
                                                         {"4096", "40.5"},
                                                         {"4096", "9223372036854775808"},
                                                         {"\"1\"", "1"},
                                                         {"\"id\": \"11", "\"other\": \"11"},
                                                         {"file:///home", "/home"},
                                                         {"file:///trash", "https://trash"},
                                                         {"]\n", "\n"},
                                                         {"\"movedToTrash\"", "\"MovedToTrash\""},
                                                         {"05Z", "05"},
                                                         {"\"buildCleanup\"", "\"unknown\""}};
  for (const auto& [from, to] : changes) {
    EXPECT_FALSE(decodeCleanupTransactions(replaced(text, from, to))) << from << " -> " << to;
  }
  EXPECT_FALSE(decodeCleanupTransactions(""));
  EXPECT_FALSE(decodeCleanupTransactions("{}"));
}

TEST(CleanupTransactionDeathTest, MovedBytesCountWhatIsInTheTrashAndStopTheProgramPast64Bits) {
  CleanupTransaction act = transaction();
  EXPECT_EQ(act.movedBytes(), 4096);
  act.items.push_back(act.items[0]);
  act.items[0].measuredBytes = std::numeric_limits<std::int64_t>::max();
  EXPECT_DEATH(act.movedBytes(), "64 bits");
  act.items[0].markRestored();
  EXPECT_EQ(act.movedBytes(), 4096);
}

TEST(CleanupTransaction, MergingKeepsAllItemsInOrder) {
  const CleanupTransaction one = transaction();
  CleanupTransaction two = transaction();
  two.source = CleanupTransaction::Source::storage;
  std::swap(two.items[0], two.items[1]);
  const auto merged = CleanupTransaction::merging(std::vector{one, two}, Date{});
  EXPECT_EQ(merged.source, CleanupTransaction::Source::tidy);
  EXPECT_EQ(merged.items, (std::vector{one.items[0], one.items[1], one.items[1], one.items[0]}));
  EXPECT_NE(merged.id, one.id);
}

}  // namespace
}  // namespace lumenary
