#include <gtest/gtest.h>

#include "base/FileURL.h"

namespace lumenary {
namespace {

TEST(FileURLTest, urlsAreWrittenAndReadBackByteForByte) {
  const struct {
    FileURL url;
    std::string_view text;
  } cases[] = {
      {{.path = "/a/b.txt", .isFolder = false}, "file:///a/b.txt"},
      {{.path = "/a/b", .isFolder = true}, "file:///a/b/"},
      {{.path = "/", .isFolder = true}, "file:///"},
      {{.path = "/a b%20?#", .isFolder = false}, "file:///a%20b%2520%3F%23"},
      {{.path = "/-._~", .isFolder = false}, "file:///-._~"},
      {{.path = "/é\xFF\n+&", .isFolder = true}, "file:///%C3%A9%FF%0A%2B%26/"},
      {{.path = "/...", .isFolder = false}, "file:///..."},
  };
  for (const auto& [url, text] : cases) {
    EXPECT_EQ(fileURLString(url), text);
    EXPECT_EQ(parseFileURL(text), url) << text;
  }
}

TEST(FileURLTest, urlsOfOthersAreReadToo) {
  const struct {
    std::string_view text;
    FileURL url;
  } cases[] = {
      {"file://localhost/a", {.path = "/a", .isFolder = false}},
      {"file:///%c3%A9", {.path = "/é", .isFolder = false}},
      {"file:///a b+é", {.path = "/a b+é", .isFolder = false}},
      {"file:////a//b//", {.path = "/a/b", .isFolder = true}},
  };
  for (const auto& [text, url] : cases) {
    EXPECT_EQ(parseFileURL(text), url) << text;
  }
}

TEST(FileURLTest, whatNamesNoFixedPlaceIsRefused) {
  using namespace std::string_view_literals;
  for (const std::string_view text : {""sv,
                                      "/a"sv,
                                      "http:///a"sv,
                                      "file:/a"sv,
                                      "file://a"sv,
                                      "file://host/a"sv,
                                      "file://localhost"sv,
                                      "file://localhosts/a"sv,
                                      "file:///%"sv,
                                      "file:///%4"sv,
                                      "file:///%4G"sv,
                                      "file:///%+4"sv,
                                      "file:///%00"sv,
                                      "file:///a\0b"sv,
                                      "file:///a/./b"sv,
                                      "file:///a/../b"sv,
                                      "file:///a/.."sv,
                                      "file:///a/%2E%2e/b"sv,
                                      "file:///a/..%2Fb"sv,
                                      "file:///a?b"sv,
                                      "file:///a#b"sv}) {
    EXPECT_EQ(parseFileURL(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace lumenary
