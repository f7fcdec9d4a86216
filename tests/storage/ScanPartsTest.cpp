#include <gtest/gtest.h>

#include "storage/LargestFiles.h"
#include "storage/ShownFolders.h"

namespace lumenary {
namespace {

constexpr std::int64_t mebibyte = 1'048'576;

TEST(FolderTable, ComparesPathsNameByName) {
  FolderTable folders("/r");
  const FolderID a = folders.add("a", 0);
  const FolderID b = folders.add("b", a);
  const FolderID c = folders.add("c", b);
  const FolderID z = folders.add("z", 0);
  EXPECT_EQ(folders.path(c), "/r/a/b/c");
  const std::tuple<FolderID, const char*, FolderID, const char*> ascending[] = {
      {0, "A", 0, "B"}, {c, "x", c, "y"}, {c, "x", b, "x"}, {b, "bb", b, "c"},
      {b, "a", b, "c"}, {c, "z", z, "a"}, {c, "x", 0, "b"}, {a, "x", 0, "y"}};
  for (const auto& [folder, name, otherFolder, otherName] : ascending) {
    EXPECT_TRUE(folders.comparePaths(folder, name, otherFolder, otherName) < 0) << name << " " << otherName;
    EXPECT_TRUE(folders.comparePaths(otherFolder, otherName, folder, name) > 0) << name << " " << otherName;
  }
  EXPECT_EQ(FolderTable("/").path(0), "/");
}

TEST(LargestFiles, KeepsTheLargestWhateverTheOrder) {
  FolderTable folders("/");
  const FolderID folder = folders.add("f", 0);
  LargestFiles files(folders);
  constexpr std::int64_t count = 130'000;
  for (std::int64_t number = 0; number < count; ++number) {
    // Every size twice; the names in no order.
    const std::string name = std::to_string(number * 7'919 % count);
    files.add({.byteCount = mebibyte + number * 7'919 % count / 2, .name = name.c_str(), .folderID = folder});
  }
  const auto& sorted = files.sorted();
  ASSERT_EQ(sorted.size(), LargestFiles::kept);
  for (std::size_t index = 0; index < sorted.size(); index += 2) {
    const auto pair = (count - static_cast<std::int64_t>(index)) / 2 - 1;
    const std::string names[] = {std::to_string(2 * pair), std::to_string(2 * pair + 1)};
    ASSERT_EQ(sorted[index].byteCount, mebibyte + pair);
    ASSERT_EQ(sorted[index + 1].byteCount, mebibyte + pair);
    ASSERT_EQ(sorted[index].name, std::min(names[0], names[1]));
    ASSERT_EQ(sorted[index + 1].name, std::max(names[0], names[1]));
  }
}

class ShownFoldersTest : public testing::Test {
 protected:
  FolderID add(const std::string& name, std::int64_t bytes, FolderID parent = 0) {
    const FolderID id = folders.add(name, parent);
    folders.directBytes(id) = bytes;
    return id;
  }
  std::vector<std::string> shown(std::initializer_list<FolderID> ofFiles = {}) {
    folders.foldUpward();
    ShownFolders choice(folders);
    for (const FolderID folder : ofFiles) {
      EXPECT_EQ(choice.show(folder), folders.path(folder));
    }
    std::vector<std::string> paths;
    for (const auto& [path, bytes] : std::move(choice).takeTotals()) {
      paths.push_back(path);
    }
    return paths;
  }

  FolderTable folders{"/r"};
};

TEST_F(ShownFoldersTest, StartAtAMebibyteWithAllBelow) {
  add("less", mebibyte - 1);
  add("in", mebibyte - 4, add("outer", 4));
  add("exact", mebibyte);
  EXPECT_EQ(shown(), (std::vector<std::string>{"/r", "/r/exact", "/r/outer"}));
}

TEST_F(ShownFoldersTest, AreTheFortyLargestAndLargeOnesBeyond) {
  FolderID last = 0;
  for (int number = 10; number <= 50; ++number) {
    last = add("n" + std::to_string(number), 2 * mebibyte);
  }
  const FolderID inLast = add("in", 0, last);
  EXPECT_EQ(shown().size(), 1U + 40);
  EXPECT_EQ(shown({inLast}).back(), "/r/n50/in") << "what stands above a listed file is shown all the same";

  for (int number = 10; number <= 90; ++number) {
    add("big" + std::to_string(number), 52'428'800 - (number == 90 ? 1 : 0));
  }
  EXPECT_EQ(shown().size(), 1U + 80) << "81 large ones, one of them a byte too small";
}

}  // namespace
}  // namespace lumenary
