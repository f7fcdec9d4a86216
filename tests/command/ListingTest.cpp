#include <gtest/gtest.h>

#include <vector>

#include "cleanup/command/Listing.h"
#include "cleanup/command/Selection.h"
#include "support/TimeZone.h"

namespace lumenary::CleanupCommand {
namespace {

using Classification = CleanupCandidate::Classification;
using std::chrono::days;
using Strings = std::vector<std::string>;

const Date now = std::chrono::sys_days(std::chrono::year(2026) / 6 / 15) + std::chrono::hours(12);

CleanupCandidate candidate(const std::string& path, std::int64_t bytes,
                           Classification classification = Classification::known) {
  CleanupCandidate made;
  made.url = {.path = path, .isFolder = true};
  made.byteCount = bytes;
  made.classification = classification;
  return made;
}

Strings paths(const std::vector<CleanupCandidate>& candidates) {
  Strings found;
  for (const CleanupCandidate& each : candidates) {
    found.push_back(each.url.path);
  }
  return found;
}

TEST(CleanupSelection, IsAllByOrderOfSizeOrTheUntouchedByAge) {
  const std::vector candidates = {candidate("/small", 1), candidate("/big", 9), candidate("/undated", 5),
                                  candidate("/alike", 1)};
  const DeveloperScanner::LastUsed lastUsed = {
      {"/small", now - days(40)}, {"/big", now - days(20)}, {"/alike", now - days(40)}, {"/gone", now - days(90)}};
  struct {
    std::optional<std::int64_t> days;
    Strings expected;
  } const cases[] = {
      {{}, {"/big", "/undated", "/small", "/alike"}},
      {1, {"/small", "/alike", "/big"}},
      {20, {"/small", "/alike"}},
      {40, {}},
      {9'000'000'000'000'000'000, {}},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(paths(selection(candidates, lastUsed, each.days, now)), each.expected) << each.days.value_or(0);
  }
}

class CleanupListing : public testing::Test {
 protected:
  Listing listing(Act act = Act::listed) const {
    return {.candidates = candidates, .lastUsed = lastUsed, .results = results, .act = act, .now = now};
  }

  const TimeZone zone{"UTC0"};
  std::vector<CleanupCandidate> candidates = {
      candidate("/code/app/node_modules", 2'250'000'000, Classification::review),
      candidate("/code/a\n\x1b[2J\xff\u202e/dist", 999),
      candidate("/code/k\u00e4se/build", 0, Classification::isProtected)};
  DeveloperScanner::LastUsed lastUsed = {{"/code/app/node_modules", now - days(3)},
                                         {"/code/k\u00e4se/build", now - std::chrono::microseconds(1)}};
  MoveResults results;
};

TEST_F(CleanupListing, IsATableThatNoNameCanDisturb) {
  EXPECT_EQ(tableText(listing()),
            "2.25 GB    3 days ago   /code/app/node_modules\n"
            "1 KB       not sure     /code/a\uFFFD\uFFFD[2J\uFFFD\uFFFD/dist\n"
            "Zero KB    now          /code/k\u00e4se/build\n"
            "Found: 3 folders, 2.25 GB\n");
  candidates = {candidate("/code/app/dist", 9'223'372'036'854'775'807)};
  EXPECT_EQ(tableText(listing()), "9223372.04 not sure     /code/app/dist\nFound: 1 folder, 9223372.04 TB\n");
  candidates.clear();
  EXPECT_EQ(tableText(listing()), "Found: 0 folders, Zero KB\n");
  EXPECT_EQ(tableText(listing(Act::moved)), "Moved to Trash: 0 folders, Zero KB\n");
}

TEST_F(CleanupListing, CountsMovedFoldersWhosePlaceIsKnown) {
  results = {{candidates[0].url.path, FileURL{"/trash/files/node_modules", true}},
             {candidates[1].url.path, std::unexpected("It \"stays\".")},
             {candidates[2].url.path, std::nullopt}};
  EXPECT_EQ(tableText(listing(Act::moved)),
            "2.25 GB    3 days ago   /code/app/node_modules\n"
            "1 KB       not sure     /code/a\uFFFD\uFFFD[2J\uFFFD\uFFFD/dist  (not moved: It \"stays\".)\n"
            "Zero KB    now          /code/k\u00e4se/build\n"
            "Moved to Trash: 1 folder, 2.25 GB\n");
}

TEST_F(CleanupListing, IsJsonWithNamesThatCanBeReadBackAndTheOutcomeOfEachMove) {
  results = {{candidates[0].url.path, std::nullopt}, {candidates[1].url.path, std::unexpected("It \"stays\".")}};
  EXPECT_EQ(jsonText(listing(Act::moved)), R"([
  {
    "bytes": 2250000000,
    "classification": "review",
    "lastUsed": "2026-06-12T12:00:00Z",
    "moved": true,
    "path": "/code/app/node_modules"
  },
  {
    "bytes": 999,
    "classification": "known",
    "error": "It \"stays\".",
    "lastUsed": null,
    "moved": false,
    "path": "/code/a\n\u001B[2J)"
                                           "\uEFFF\u202E"
                                           R"(/dist"
  },
  {
    "bytes": 0,
    "classification": "review",
    "lastUsed": "2026-06-15T11:59:59Z",
    "path": "/code/käse/build"
  }
]
)");
  candidates.clear();
  EXPECT_EQ(jsonText(listing()), "[]\n");
}

}  // namespace
}  // namespace lumenary::CleanupCommand
