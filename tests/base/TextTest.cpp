#include <gtest/gtest.h>

#include <string>

#include "base/JsonReader.h"
#include "base/JsonWriter.h"
#include "base/Text.h"

namespace lumenary {
namespace {

using Pair = std::pair<std::string_view, std::string_view>;

TEST(TextTest, sequencesAreRecognisedByTheTableOfTheStandard) {
  for (const std::string bytes :
       {"", "\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xE1\x80\x80", "\xEC\xBF\xBF", "\xED\x9F\xBF",
        "\xEE\x80\x80", "\xF0\x90\x80\x80", "\xF1\x80\x80\x80", "\xF3\xBF\xBF\xBF", "\xF4\x8F\xBF\xBF"}) {
    EXPECT_EQ(utf8SequenceLength(bytes), bytes.size()) << testing::PrintToString(bytes);
    EXPECT_EQ(utf8SequenceLength(bytes + "\x80"), bytes.size()) << testing::PrintToString(bytes);
  }
  // A continuation alone, overlong ones, a surrogate, what is above U+10FFFF, and what is cut off.
  for (const std::string_view bytes : {"\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF", "\xED\xA0\x80",
                                       "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xE2\x82", "\xE2\x82x", "\xC3\xC3"}) {
    EXPECT_EQ(utf8SequenceLength(bytes), 0U) << testing::PrintToString(bytes);
  }
}

TEST(TextTest, displayedTextCannotMoveTheCursorOrReorderTheLine) {
  const Pair cases[] = {{"Grüße 日本 \U0001F600", "Grüße 日本 \U0001F600"},
                        {"\033[2J\r\n\t", "\uFFFD[2J\uFFFD\uFFFD\uFFFD"},
                        {"\x1F \x7E\x7F", "\uFFFD ~\uFFFD"},
                        {"\u0080\u009F\u00A0", "\uFFFD\uFFFD\u00A0"},
                        {"\u2027\u2028\u2029", "\u2027\uFFFD\uFFFD"},
                        {"\u061C\u200D\u200E\u200F", "\uFFFD\u200D\uFFFD\uFFFD"},
                        {"\u202A\u202E\u202F", "\uFFFD\uFFFD\u202F"},
                        {"\u2065\u2066\u2069\u206A", "\u2065\uFFFD\uFFFD\u206A"},
                        {"a\xFF\xE2\x82z", "a\uFFFD\uFFFD\uFFFDz"}};
  for (const auto& [bytes, shown] : cases) {
    EXPECT_EQ(displayText(bytes), shown) << testing::PrintToString(bytes);
  }
}

TEST(TextTest, reversibleTextLeavesTextAloneAndMarksBytes) {
  const Pair cases[] = {{"Grüße\n\u202E\uEF7F\uF000", "Grüße\n\u202E\uEF7F\uF000"},
                        {"\x80-\xBF-\xC0-\xFF", "\uEF80-\uEFBF-\uEFC0-\uEFFF"},
                        {"\uEF80", "\uEFEE\uEFBE\uEF80"},
                        {"\uEFFF", "\uEFEE\uEFBF\uEFBF"}};
  for (const auto& [bytes, text] : cases) {
    EXPECT_EQ(reversibleText(bytes), text) << testing::PrintToString(bytes);
    EXPECT_EQ(bytesOfReversibleText(text), bytes) << testing::PrintToString(text);
  }
}

TEST(TextTest, anyNameComesBackFromJson) {
  const auto expectBack = [](const std::string& name) {
    const std::string json = JsonWriter(JsonWriter::Layout::compact).string(reversibleText(name)).take();
    const auto document = JsonDocument::parse(json);
    ASSERT_TRUE(document) << testing::PrintToString(name);
    ASSERT_EQ(document->root().string().transform(bytesOfReversibleText), name);
  };
  for (int byte = 0; byte < 256; ++byte) {
    expectBack(std::string(1, static_cast<char>(byte)));
  }
  // Every row of four pieces that could be confused with the escape or with each other.
  const std::string pieces[] = {"\xEE",   "\xBE",   "\xBF", "\x80", "\xFF", "\xF0\x9F", "\xEE\xBE",
                                "\uEF80", "\uEFFF", "é",    "a",    "\"",   "\\",       "\n"};
  constexpr std::size_t count = std::size(pieces);
  for (std::size_t row = 0; row < count * count * count * count; ++row) {
    expectBack(pieces[row % count] + pieces[row / count % count] + pieces[row / count / count % count] +
               pieces[row / count / count / count]);
  }
}

TEST(TextTest, columnsAreFilledOrCutByCharacters) {
  const std::tuple<std::string_view, std::size_t, std::string_view> cases[] = {
      {"ab", 4, "ab  "},    {"abcd", 4, "abcd"}, {"abcde", 4, "abcd"}, {"äöü", 4, "äöü "},
      {"äöüßé", 4, "äöüß"}, {"", 2, "  "},       {"ab", 0, ""}};
  for (const auto& [text, width, column] : cases) {
    EXPECT_EQ(paddedOrCut(text, width), column) << text;
  }
}

}  // namespace
}  // namespace lumenary
