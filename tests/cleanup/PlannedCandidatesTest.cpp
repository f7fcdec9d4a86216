#include <gtest/gtest.h>

#include "cleanup/PlannedCandidates.h"
#include "support/JudgedHome.h"

namespace lumenary {
namespace {

using Classification = CleanupCandidate::Classification;

TEST(PlannedCandidates, AreTheBuildFilesOfThePlanLargestFirstWithTheirFormerIds) {
  TidyPlan plan;
  const auto add = [&](const std::string& path, std::int64_t bytes, TidyItem::Kind kind) {
    plan.items.push_back({.entry = folderEntry(path, bytes), .kind = kind, .title = "Title", .reason = "Reason."});
  };
  add("/p/node_modules", 10, TidyItem::Kind::buildFiles);
  add("/p/cache", 99, TidyItem::Kind::cache);
  add("/p/target", 30, TidyItem::Kind::buildFiles);
  add("/p/dist", 10, TidyItem::Kind::buildFiles);
  const CleanupCandidate former{
      .id = UUID::random(), .url = {.path = "/p/dist"}, .reason = {}, .consequences = {}, .identity = {}};
  const auto candidates = buildCandidates(&plan, std::vector{former});
  ASSERT_EQ(candidates.size(), 3U);
  EXPECT_EQ(candidates[0].url.path, "/p/target");
  EXPECT_EQ(candidates[1].url.path, "/p/node_modules") << "equal ones in the order of the plan";
  EXPECT_EQ(candidates[2].id, former.id);
  EXPECT_NE(candidates[1].id, former.id);
  EXPECT_EQ(candidates[0].reason, "Title, found by the disk scan.");
  EXPECT_EQ(candidates[0].consequences, "Reason.");
  EXPECT_EQ(candidates[0].classification, Classification::known);
  EXPECT_EQ(candidates[1].classification, Classification::review);
  EXPECT_TRUE(buildCandidates(nullptr, candidates).empty());
}

}  // namespace
}  // namespace lumenary
