#include <gtest/gtest.h>

#include "base/Path.h"

namespace lumenary {
namespace {

TEST(PathTest, standardising) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"/", "/"},           {"/a/b", "/a/b"},       {"//a///b//", "/a/b"}, {"", "/"},
      {"/a/../b", "/b"},    {"/./a/./b/.", "/a/b"}, {"a/b", "/a/b"},       {"/...", "/..."},
      {"/.a/b.", "/.a/b."}, {"/a/..", "/"},         {"/..a", "/..a"},      {"/\xFF/ ", "/\xFF/ "},
      {"/../../a", "/a"}};
  for (const auto& [path, standard] : cases) {
    EXPECT_EQ(standardise(path), standard) << path;
    EXPECT_EQ(standardised(std::string(path)), standard) << path;
    EXPECT_EQ(isStandard(path), path == standard) << path;
  }
}

TEST(PathTest, takingApartAndPuttingTogether) {
  const std::tuple<std::string_view, std::string_view, std::string_view, std::size_t> cases[] = {
      {"/", "/", "/", 1}, {"/a", "/", "a", 2}, {"/a/b", "/a", "b", 3}, {"/a/b/c.d", "/a/b", "c.d", 4}};
  for (const auto& [path, parent, name, count] : cases) {
    EXPECT_EQ(parentPath(path), parent) << path;
    EXPECT_EQ(lastPathComponent(path), name) << path;
    EXPECT_EQ(pathComponentCount(path), count) << path;
    if (path != "/") {
      EXPECT_EQ(appendingPathComponent(parent, name), path);
    }
  }
}

TEST(PathTest, insideIsToldByWholeComponents) {
  const std::tuple<std::string_view, std::string_view, bool> cases[] = {
      {"/a/b", "/a", true}, {"/a", "/a", true}, {"/ab", "/a", false}, {"/a", "/a/b", false},
      {"/a/b", "/", true},  {"/", "/", true},   {"/", "/a", false},   {"/b/a", "/a", false}};
  for (const auto& [path, ancestor, inside] : cases) {
    EXPECT_EQ(isSameOrInside(path, ancestor), inside) << path << " in " << ancestor;
  }
}

}  // namespace
}  // namespace lumenary
