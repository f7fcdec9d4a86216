#include <gtest/gtest.h>

#include "platform/linux/TrashInfo.h"
#include "platform/linux/TrashName.h"
#include "platform/linux/TrashSizes.h"
#include "support/TimeZone.h"

namespace lumenary {
namespace {

TEST(TrashInfoTest, ReadsWhatTheFormatAllows) {
  const TimeZone zone("XYZ3");
  struct Case {
    const char* name;
    std::string text;
    std::string path;    ///< empty: refused
    std::string date{};  ///< empty: none
  };
  const Case cases[] = {
      {"plain", "[Trash Info]\nPath=/a/b\nDeletionDate=2026-01-02T03:04:05\n", "/a/b", "2026-01-02T06:04:05Z"},
      {"an impossible day", "[Trash Info]\nPath=/a\nDeletionDate=2026-02-29T03:04:05\n", "/a"},
      {"a date that isn't one", "[Trash Info]\nPath=/a\nDeletionDate=2026-01-02 03:04:05\n", "/a"},
      {"a date that goes on", "[Trash Info]\nPath=/a\nDeletionDate=2026-01-02T03:04:05Z\n", "/a"},
      {"encoded", "[Trash Info]\nPath=/a%20b/%FF%0A\n", "/a b/\xff\n"},
      {"first of two counts", "[Trash Info]\nPath=/a\nPath=/b\n", "/a"},
      {"other lines and line ends", "[Trash Info]\r\nX=1\r\nPath=/a\r\n", "/a"},
      {"no header", "Path=/a\n", ""},
      {"header in second line", "\n[Trash Info]\nPath=/a\n", ""},
      {"no path", "[Trash Info]\nDeletionDate=x\n", ""},
      {"empty path", "[Trash Info]\nPath=\n", ""},
      {"broken encoding", "[Trash Info]\nPath=/a%2\n", ""},
      {"encoded end of text", "[Trash Info]\nPath=/a%00b\n", ""},
      {"climbs", "[Trash Info]\nPath=/a/../b\n", ""},
      {"climbs when decoded", "[Trash Info]\nPath=a/%2E%2E/b\n", ""},
      {"nothing", "", ""},
  };
  for (const Case& test : cases) {
    const auto info = parseTrashInfo(test.text);
    EXPECT_EQ(info ? info->path : "", test.path) << test.name;
    EXPECT_EQ(info && info->deleted ? iso8601(*info->deleted) : "", test.date) << test.name;
  }
  EXPECT_EQ(originOf({.path = "a/b"}, "/media/disk"), "/media/disk/a/b");
  EXPECT_EQ(originOf({.path = "a/b"}, ""), std::nullopt);
  EXPECT_EQ(originOf({.path = "/a/b"}, "/media/disk"), std::nullopt);
}

TEST(TrashNameTest, StaysShortAndKeepsTheExtension) {
  struct Case {
    std::string name;
    unsigned attempt;
    std::size_t limit;
    std::string expected;
  };
  const Case cases[] = {
      {"dist", 0, 245, "dist"},           {"dist", 1, 245, "dist.2"},
      {"a.tar", 8, 245, "a.9.tar"},       {".next", 1, 245, ".next.2"},
      {"photo.jpeg", 1, 9, "ph.2.jpeg"},  {"ééé", 0, 5, "éé"},
      {"\xff\xff\xff", 0, 2, "\xff\xff"}, {"a.averyveryverylongextension", 1, 245, "a.averyveryverylongextension.2"},
  };
  for (const Case& test : cases) {
    EXPECT_EQ(trashName(test.name, test.attempt, test.limit), test.expected);
  }
  EXPECT_NE(trashName("dist", 9, 245), trashName("dist", 10, 245));
  EXPECT_EQ(trashName("dist", 9, 245).size(), std::string("dist.00000000").size());
}

TEST(TrashSizesTest, KeepsOtherEntriesAndDropsWhatIsBroken) {
  const FolderSizeChanges changes = {{"new one", FolderSize{.allocatedBytes = 5, .infoModifiedSeconds = 7}},
                                     {"gone", std::nullopt}};
  EXPECT_EQ(updatedFolderSizes("1 2 kept\nbroken\n3 4 gone\n5 x y\n6 7 new%20one", changes),
            "1 2 kept\n5 7 new%20one\n");
}

}  // namespace
}  // namespace lumenary
