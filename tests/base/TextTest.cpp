#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/JsonReader.h"
#include "base/JsonWriter.h"
#include "base/Text.h"

namespace lumenary {
namespace {

TEST(TextTest, sequencesAreRecognisedByTheTableOfTheStandard) {
  const struct {
    std::string_view bytes;
    std::size_t length;
  } cases[] = {
      {"", 0},
      {"a", 1},
      {"\x7F", 1},
      {"\xC2\x80", 2},
      {"\xDF\xBF more", 2},
      {"\xE0\xA0\x80", 3},
      {"\xE1\x80\x80", 3},
      {"\xEC\xBF\xBF", 3},
      {"\xED\x9F\xBF", 3},
      {"\xEE\x80\x80", 3},
      {"\xF0\x90\x80\x80", 4},
      {"\xF1\x80\x80\x80", 4},
      {"\xF3\xBF\xBF\xBF", 4},
      {"\xF4\x8F\xBF\xBF", 4},
      {"\x80", 0},              // a continuation alone
      {"\xC1\xBF", 0},          // overlong
      {"\xE0\x9F\xBF", 0},      // overlong
      {"\xF0\x8F\xBF\xBF", 0},  // overlong
      {"\xED\xA0\x80", 0},      // a surrogate
      {"\xF4\x90\x80\x80", 0},  // above U+10FFFF
      {"\xF5\x80\x80\x80", 0},
      {"\xE2\x82", 0},  // cut off
      {"\xE2\x82x", 0},
      {"\xC3\xC3", 0},
  };
  for (const auto& [bytes, length] : cases) {
    EXPECT_EQ(utf8SequenceLength(bytes), length) << testing::PrintToString(bytes);
  }
}

TEST(TextTest, displayedTextCannotMoveTheCursorOrReorderTheLine) {
  const struct {
    std::string_view bytes;
    std::string_view shown;
  } cases[] = {
      {"Grüße 日本 \U0001F600", "Grüße 日本 \U0001F600"},
      {"\033[2J\r\n\t", "\uFFFD[2J\uFFFD\uFFFD\uFFFD"},
      {"\x1F \x7E\x7F", "\uFFFD ~\uFFFD"},
      {"\u0080\u009F\u00A0", "\uFFFD\uFFFD\u00A0"},
      {"\u2027\u2028\u2029", "\u2027\uFFFD\uFFFD"},
      {"\u061C\u200D\u200E\u200F", "\uFFFD\u200D\uFFFD\uFFFD"},
      {"\u202A\u202E\u202F", "\uFFFD\uFFFD\u202F"},
      {"\u2065\u2066\u2069\u206A", "\u2065\uFFFD\uFFFD\u206A"},
      {"a\xFF\xE2\x82z", "a\uFFFD\uFFFD\uFFFDz"},
  };
  for (const auto& [bytes, shown] : cases) {
    EXPECT_EQ(displayText(bytes), shown) << testing::PrintToString(bytes);
  }
}

TEST(TextTest, reversibleTextLeavesTextAloneAndMarksBytes) {
  const struct {
    std::string_view bytes;
    std::string_view text;
  } cases[] = {
      {"Grüße\n\u202E\uEF7F\uF000", "Grüße\n\u202E\uEF7F\uF000"},
      {"\x80-\xBF-\xC0-\xFF", "\uEF80-\uEFBF-\uEFC0-\uEFFF"},
      {"\uEF80", "\uEFEE\uEFBE\uEF80"},
      {"\uEFFF", "\uEFEE\uEFBF\uEFBF"},
  };
  for (const auto& [bytes, text] : cases) {
    EXPECT_EQ(reversibleText(bytes), text) << testing::PrintToString(bytes);
    EXPECT_EQ(bytesOfReversibleText(text), bytes) << testing::PrintToString(text);
  }
}

TEST(TextTest, anyNameComesBackFromJson) {
  std::vector<std::string> names;
  for (int byte = 0; byte < 256; ++byte) {
    names.emplace_back(1, static_cast<char>(byte));
  }
  // Every row of four pieces that could be confused with the escape or with each other.
  const std::vector<std::string> pieces{"\xEE",   "\xBE",   "\xBF", "\x80", "\xFF", "\xF0\x9F", "\xEE\xBE",
                                        "\uEF80", "\uEFFF", "é",    "a",    "\"",   "\\",       "\n"};
  const std::size_t count = pieces.size();
  for (std::size_t row = 0; row < count * count * count * count; ++row) {
    names.push_back(pieces[row % count] + pieces[row / count % count] + pieces[row / count / count % count] +
                    pieces[row / count / count / count]);
  }
  for (const std::string& name : names) {
    const std::string json = JsonWriter(JsonWriter::Layout::compact).string(reversibleText(name)).take();
    const auto document = JsonDocument::parse(json);
    ASSERT_TRUE(document) << testing::PrintToString(name);
    ASSERT_EQ(document->root().string().transform(bytesOfReversibleText), name);
  }
}

TEST(TextTest, columnsAreFilledOrCutByCharacters) {
  const struct {
    std::string_view text;
    std::size_t width;
    std::string_view column;
  } cases[] = {{"ab", 4, "ab  "},    {"abcd", 4, "abcd"}, {"abcde", 4, "abcd"}, {"äöü", 4, "äöü "},
               {"äöüßé", 4, "äöüß"}, {"", 2, "  "},       {"ab", 0, ""}};
  for (const auto& [text, width, column] : cases) {
    EXPECT_EQ(paddedOrCut(text, width), column) << text;
  }
}

}  // namespace
}  // namespace lumenary
