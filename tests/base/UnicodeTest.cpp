#include <gtest/gtest.h>

#include "base/Unicode.h"

namespace lumenary {
namespace {

TEST(Unicode, FoldsTheCaseOfAnyScriptOneCharacterForOne) {
  const std::pair<const char*, const char*> cases[] = {
      {"Report.PDF", "report.pdf"},
      {"ÄÖÜ Straße", "äöü straße"},  // one character stays one: not "strasse"
      {"STRA\u1E9EE", "straße"},
      {"ΟΔΥΣΣΕΥΣ", "οδυσσευσ"},
      {"οδυσσευς", "οδυσσευσ"},  // the sigma at a word's end is the same letter
      {"ДОКУМЕНТЫ", "документы"},
      {"\u1F88", "\u1F80"},
      {"文書", "文書"},
      {"caf\xE9 B\xFF", "caf\xE9 b\xFF"},  // not UTF-8
      {"Ä\xF0\x9F", "ä\xF0\x9F"},
  };
  for (const auto& [text, folded] : cases) {
    EXPECT_EQ(caseFolded(text), folded);
  }
}

TEST(Unicode, TrimsWhiteSpaceOfAnyWidthAtBothEndsOnly) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"  a b\t\n", "a b"}, {"\u3000文\u00A0書\u2003", "文\u00A0書"}, {" \u2028 ", ""}, {"\xFF ", "\xFF"}, {"", ""}};
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(trimmed(text), expected);
  }
}

TEST(Unicode, KeepsLettersMarksAndNumbers) {
  EXPECT_EQ(alphanumericsOr('-', "/Volumes/Disk 2"), "-Volumes-Disk-2");
  EXPECT_EQ(alphanumericsOr('-', "/Fotos/Größe_½ 文書é"), "-Fotos-Größe-½-文書é");
  EXPECT_EQ(alphanumericsOr('-', "a\xFF\xC3"), "a--");
}

}  // namespace
}  // namespace lumenary
