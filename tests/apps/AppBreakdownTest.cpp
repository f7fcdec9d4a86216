#include <gtest/gtest.h>

#include "apps/AppBreakdown.h"
#include "support/AppHome.h"

namespace lumenary {
namespace {

constexpr std::int64_t mib = std::int64_t{1} << 20;

/// A folder "data" with sizes as a scan would have told them.
struct BrokenDown : AppHome {
  using Told = std::vector<std::tuple<std::string, std::int64_t, AppDataVerdict>>;

  explicit BrokenDown(const std::vector<std::pair<std::string, std::int64_t>>& sizes) {
    std::vector<FolderByteTotals::Folder> folders;
    for (const auto& [relative, bytes] : sizes) {
      makeFolder("data/" + relative);
      folders.push_back({path("data/" + relative), bytes});
    }
    known = FolderByteTotals(std::move(folders));
  }

  Told told(std::span<const AppDataPart> parts = {}, std::int64_t minimum = 0,
            AppDataKind kind = AppDataKind::support) {
    AppFolders looked(reader, known, {});
    Told all;
    for (const AppDataItem& item :
         lumenary::parts(looked, path("data"), {.kind = kind, .known = parts, .minimumBytes = minimum})) {
      all.emplace_back(item.title, item.bytes, item.verdict);
    }
    return all;
  }

  FolderByteTotals known;
};

using enum AppDataVerdict;

TEST(AppBreakdown, BeginsAt50MiB) {
  BrokenDown less({{"Cache", smallestBrokenDown - 1}});
  EXPECT_EQ(less.told({}, smallestBrokenDown), (BrokenDown::Told{{"App data", smallestBrokenDown - 1, keep}}));
  BrokenDown enough({{"Cache", smallestBrokenDown}});
  EXPECT_EQ(enough.told({}, smallestBrokenDown), (BrokenDown::Told{{"Temporary cache", smallestBrokenDown, safe}}));
}

TEST(AppBreakdown, NestedPartsComeOutOfWhatTheyStandIn) {
  BrokenDown user({{"User", 3000 * mib}, {"User/History", 1000 * mib}, {"User/empty", 0}});
  const std::vector<AppDataPart> parts = {{"User/empty", "Empty", "", safe},
                                          {"User/History", "History", "", caution},
                                          {"User/History", "Again", "", caution},
                                          {"absent", "Absent", "", safe},
                                          {"User/absent", "Absent", "", safe}};
  EXPECT_EQ(user.told({parts.data(), 2}),
            (BrokenDown::Told{{"History", 1000 * mib, caution}, {"Your app data", 2000 * mib, keep}}));
  const auto again = user.told(parts);
  EXPECT_EQ(again.back(), (std::tuple{"Your app data", 1000 * mib, keep})) << "each nested part counts for itself";
}

TEST(AppBreakdown, AnEarlierPassTakesWhatALaterOneWouldKnow) {
  BrokenDown app({{"Cache", 5}, {"Logs", 7}, {"empty cache", 1}, {"Code Cache", 0}});
  const std::vector<AppDataPart> parts = {{"Cache", "Precious", "", keep}};
  EXPECT_EQ(app.told(parts), (BrokenDown::Told{{"Precious", 5, keep}, {"Logs", 7, safe}, {"Your app data", 1, keep}}));
}

TEST(AppBreakdown, FindsCopiesOfWebsites) {
  BrokenDown app({{"Service Worker", 10},
                  {"Service Worker/CacheStorage", 4},
                  {"Default", 20},
                  {"Default/Service Worker", 9},
                  {"Default/Service Worker/ScriptCache", 9}});
  EXPECT_EQ(app.told(), (BrokenDown::Told{{"Website offline caches", 4, safe},
                                          {"Website offline caches · Default", 9, safe},
                                          {"Your app data", 17, keep}}));
}

TEST(AppBreakdown, KeepsTheNewestVersion) {
  BrokenDown app({{"1.2", 1}, {"1.10", 2}, {"base", 100}, {"base/2.0.0", 10}, {"base/2.0", 20}, {"base/notes", 5}});
  EXPECT_EQ(app.told(), (BrokenDown::Told{
                            {"Old version 1.2", 1, safe}, {"Old version 2.0", 20, safe}, {"Your app data", 82, keep}}));
}

TEST(AppBreakdown, TellsTheRestOfATool) {
  BrokenDown tool({{"notes", 3}});
  EXPECT_EQ(tool.told({}, 0, AppDataKind::homeFolder), (BrokenDown::Told{{"Settings and other files", 3, keep}}));
}

TEST(AppBreakdown, FollowsNoLink) {
  BrokenDown app({{"own", 3}});
  app.build({{"elsewhere/History/file", 10'000}, {"data/User", LinkTo{"../elsewhere"}}, {"linked", LinkTo{"data"}}});
  const std::vector<AppDataPart> parts = {{"User/History", "History", "", safe}};
  EXPECT_EQ(app.told(parts), (BrokenDown::Told{{"Your app data", 3, keep}}));
  AppFolders looked(app.reader, app.known, {});
  const auto whole = lumenary::parts(looked, app.path("linked"), {});
  ASSERT_EQ(whole.size(), 1U);
  EXPECT_EQ(whole[0].bytes, 0);
  EXPECT_FALSE(whole[0].isDirectory);
}

}  // namespace
}  // namespace lumenary
