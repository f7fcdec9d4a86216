#include <gtest/gtest.h>

#include "apps/SeenApps.h"
#include "support/FakeFiles.h"

namespace lumenary {
namespace {

const Date first = *parseISO8601("2026-01-01T00:00:00Z");
const std::string path = "/support/seen-apps.json";

RegisteredApp app(const std::string& id, AppOrigin origin = AppOrigin::desktopEntry) {
  return {.path = "/" + id,
          .id = id,
          .name = "Name \xff",
          .origin = origin,
          .program = "/bin/" + id,
          .dataNames = {"data\n"}};
}

TEST(SeenApps, RemembersWhatIsGone) {
  FakeFiles files;
  SeenApps store(files, "/support");
  EXPECT_TRUE(store.load().empty());
  store.note(std::vector{app("a"), app("b"), app("image", AppOrigin::appImage)}, first);
  store.note(std::vector{app("b")}, first + std::chrono::days(2));
  const std::vector<SeenApp> expected = {
      {.id = "a",
       .name = "Name \xff",
       .program = "/bin/a",
       .dataNames = {"data\n"},
       .firstSeen = first,
       .lastSeen = first},
      {.id = "b",
       .name = "Name \xff",
       .program = "/bin/b",
       .dataNames = {"data\n"},
       .firstSeen = first,
       .lastSeen = first + std::chrono::days(2)},
  };
  EXPECT_EQ(store.load(), expected);
}

TEST(SeenApps, WritesOnceADayUnlessThereIsNews) {
  FakeFiles files;
  SeenApps store(files, "/support");
  const auto writesBy = [&](const std::vector<RegisteredApp>& apps, std::chrono::hours after) {
    const auto before = std::ranges::count(files.calls, "write " + path);
    store.note(apps, first + after);
    return std::ranges::count(files.calls, "write " + path) - before;
  };
  using std::chrono::hours;
  EXPECT_EQ(writesBy({app("a")}, hours(0)), 1);
  EXPECT_EQ(writesBy({app("a")}, hours(23)), 0);
  EXPECT_EQ(writesBy({app("a"), app("b")}, hours(23)), 1);
  EXPECT_EQ(writesBy({app("a")}, hours(47)), 1);
  EXPECT_EQ(writesBy({}, hours(100)), 0);
}

TEST(SeenApps, BeginsAnewWithADamagedFileAndKeepsItsBytesOnce) {
  FakeFiles files;
  SeenApps store(files, "/support");
  for (const char* damaged : {"[{\"id\":1}]", "{", "[]x"}) {
    files.contents[path] = damaged;
    EXPECT_TRUE(store.load().empty()) << damaged;
    store.note(std::vector{app("a")}, first);
    EXPECT_EQ(store.load().size(), 1U) << damaged;
  }
  EXPECT_EQ(files.contents["/support/seen-apps.unreadable.json"], "[{\"id\":1}]");
}

TEST(SeenApps, LeavesAloneWhatCanNotBeReadOrKept) {
  FakeFiles files;
  SeenApps store(files, "/support");
  for (const char* failing : {"read /support/seen-apps.json", "write /support/seen-apps.unreadable.json",
                              "lock /support/seen-apps.json.lock", "makeFolders /support"}) {
    files.contents = {{path, "damaged"}};
    files.failures = {{failing, EIO}};
    store.note(std::vector{app("a")}, first);
    EXPECT_EQ(files.contents[path], "damaged") << failing;
  }
}

}  // namespace
}  // namespace lumenary
