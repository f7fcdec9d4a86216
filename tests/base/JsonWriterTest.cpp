#include <gtest/gtest.h>

#include <limits>

#include "base/JsonWriter.h"

namespace lumenary {
namespace {

using Layout = JsonWriter::Layout;

TEST(JsonWriterTest, bothLayoutsHoldTheSameValues) {
  const auto sample = [](Layout layout) {
    JsonWriter json(layout);
    json.beginObject().key("a").beginArray().integer(1).beginObject().endObject().null().endArray();
    return json.key("b").boolean(true).key("c").beginArray().endArray().endObject().take();
  };
  EXPECT_EQ(sample(Layout::compact), R"({"a":[1,{},null],"b":true,"c":[]})");
  EXPECT_EQ(sample(Layout::pretty), "{\n  \"a\": [\n    1,\n    {},\n    null\n  ],\n  \"b\": true,\n  \"c\": []\n}");
}

TEST(JsonWriterTest, stringsAndKeysAreEscaped) {
  const std::pair<std::string_view, std::string_view> cases[] = {{"a/b é \U0001F600 \x7F", "\"a/b é \U0001F600 \x7F\""},
                                                                 {R"("\)", R"("\"\\")"},
                                                                 {"\b\f\n\r\t", R"("\b\f\n\r\t")"},
                                                                 {std::string_view("\0\x1F", 2), R"("\u0000\u001F")"}};
  for (const auto& [text, json] : cases) {
    EXPECT_EQ(JsonWriter(Layout::compact).string(text).take(), json);
  }
  EXPECT_EQ(JsonWriter(Layout::compact).beginObject().key("\"\n").null().endObject().take(), R"({"\"\n":null})");
}

TEST(JsonWriterTest, numbers) {
  const auto number = [](double value) { return JsonWriter(Layout::compact).number(value).take(); };
  EXPECT_EQ(number(0.1), "0.1");
  EXPECT_EQ(number(-3), "-3");
  EXPECT_EQ(number(1795383965.25), "1795383965.25");
  EXPECT_EQ(number(std::numeric_limits<double>::infinity()), "null");
  EXPECT_EQ(JsonWriter(Layout::compact).integer(INT64_MIN).take(), "-9223372036854775808");
  EXPECT_EQ(JsonWriter(Layout::compact).unsignedInteger(UINT64_MAX).take(), "18446744073709551615");
}

}  // namespace
}  // namespace lumenary
