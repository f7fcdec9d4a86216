#include <gtest/gtest.h>

#include "base/FileURL.h"

namespace lumenary {
namespace {

TEST(FileURLTest, urlsAreWrittenAndReadBackByteForByte) {
  const std::pair<const char*, FileURL> cases[] = {
      {"file:///", {"/", true}},         {"file:///a/b.txt", {"/a/b.txt", false}},
      {"file:///a/b/", {"/a/b", true}},  {"file:///a%20b%2520%3F%23", {"/a b%20?#", false}},
      {"file:///...", {"/...", false}},  {"file:///%C3%A9%FF%0A%2B%26/", {"/é\xFF\n+&", true}},
      {"file:///-._~", {"/-._~", false}}};
  for (const auto& [text, url] : cases) {
    EXPECT_EQ(fileURLString(url), text);
    EXPECT_EQ(parseFileURL(text), url) << text;
  }
}

TEST(FileURLTest, urlsOfOthersAreReadToo) {
  EXPECT_EQ(parseFileURL("file://localhost/a"), (FileURL{"/a", false}));
  EXPECT_EQ(parseFileURL("file:///a b+%c3%A9"), (FileURL{"/a b+é", false}));
  EXPECT_EQ(parseFileURL("file:////a//b//"), (FileURL{"/a/b", true}));
}

TEST(FileURLTest, whatNamesNoFixedPlaceIsRefused) {
  for (const std::string_view text :
       {"", "/a", "http:///a", "file:/a", "file://host/a", "file://localhost", "file://localhosts/a", "file:///%",
        "file:///%4", "file:///%4G", "file:///%+4", "file:///%00", "file:///a/./b", "file:///a/..",
        "file:///a/%2E%2e/b", "file:///a/..%2Fb", "file:///a?b", "file:///a#b"}) {
    EXPECT_EQ(parseFileURL(text), std::nullopt) << text;
  }
  EXPECT_EQ(parseFileURL(std::string_view("file:///a\0b", 11)), std::nullopt);
}

}  // namespace
}  // namespace lumenary
