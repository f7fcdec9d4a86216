#include <gtest/gtest.h>

#include "base/Path.h"

namespace lumenary {
namespace {

TEST(PathTest, standardising) {
  const struct {
    std::string_view path;
    std::string_view standard;
  } cases[] = {
      {"/", "/"},
      {"", "/"},
      {"/a/b", "/a/b"},
      {"//a///b//", "/a/b"},
      {"/./a/./b/.", "/a/b"},
      {"/a/../b", "/b"},
      {"/a/b/..", "/a"},
      {"/../../a", "/a"},
      {"/a/..", "/"},
      {"a/b", "/a/b"},
      {"/...", "/..."},
      {"/.a/b.", "/.a/b."},
      {"/\xFF/ ", "/\xFF/ "},
      {"/..a", "/..a"},
  };
  for (const auto& [path, standard] : cases) {
    EXPECT_EQ(standardise(path), standard) << path;
  }
}

TEST(PathTest, takingApartAndPuttingTogether) {
  const struct {
    std::string_view path;
    std::string_view parent;
    std::string_view name;
    std::size_t count;
  } cases[] = {{"/", "/", "/", 1}, {"/a", "/", "a", 2}, {"/a/b", "/a", "b", 3}, {"/a/b/c.d", "/a/b", "c.d", 4}};
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
  const struct {
    std::string_view path;
    std::string_view ancestor;
    bool inside;
  } cases[] = {
      {"/a/b", "/a", true}, {"/a", "/a", true}, {"/ab", "/a", false}, {"/a", "/a/b", false},
      {"/a/b", "/", true},  {"/", "/", true},   {"/", "/a", false},   {"/b/a", "/a", false},
  };
  for (const auto& [path, ancestor, inside] : cases) {
    EXPECT_EQ(isSameOrInside(path, ancestor), inside) << path << " in " << ancestor;
  }
}

}  // namespace
}  // namespace lumenary
