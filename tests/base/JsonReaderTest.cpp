#include <gtest/gtest.h>

#include <memory>
#include <sstream>

#include "base/JsonReader.h"

namespace lumenary {
namespace {

using Error = JsonDocument::Error;

/// Which types a value can be read as, and what comes out.
std::string readings(const JsonValue& value) {
  std::ostringstream text;
  text << std::boolalpha << (value.isNull() ? "null;" : "");
  const auto add = [&text](std::string_view type, const auto& reading) {
    if (reading) {
      text << type << ' ' << *reading << ';';
    }
  };
  add("string", value.string());
  add("integer", value.integer());
  add("unsigned", value.unsignedInteger());
  add("number", value.number());
  add("boolean", value.boolean());
  add("elements", value.elements().transform([](const auto& elements) { return elements.size(); }));
  return text.str();
}

TEST(JsonReaderTest, aValueIsReadAsItsOwnTypeOnly) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"{}", ""},
      {"null", "null;"},
      {" 3 ", "integer 3;unsigned 3;number 3;"},
      {"[1,[2]]", "elements 2;"},
      {"true", "boolean true;"},
      {"-3", "integer -3;number -3;"},
      {R"("3")", "string 3;"},
      {"2.5e1", "number 25;"},
      {R"("\u00e9\n\ud83d\ude00\/")", "string é\n\U0001F600/;"},
      {"9223372036854775807", "integer 9223372036854775807;unsigned 9223372036854775807;number 9.22337e+18;"},
      {"18446744073709551615", "unsigned 18446744073709551615;number 1.84467e+19;"}};
  for (const auto& [json, read] : cases) {
    const auto document = JsonDocument::parse(json);
    ASSERT_TRUE(document) << json;
    EXPECT_EQ(readings(document->root()), read) << json;
  }
}

TEST(JsonReaderTest, membersAndElementsAreFoundAfterTheDocumentMoved) {
  auto parsed = JsonDocument::parse(R"({"a": [1, {"b\n": "x"}], "twice": 1, "twice": 2, "": null})");
  ASSERT_TRUE(parsed);
  const JsonValue root = parsed->root();
  const JsonDocument document = *std::move(parsed);
  const auto elements = root.member("a").and_then(&JsonValue::elements);
  ASSERT_TRUE(elements);
  EXPECT_EQ((*elements)[0].integer(), 1);
  EXPECT_EQ((*elements)[1].member("b\n").and_then(&JsonValue::string), "x");
  EXPECT_EQ(root.member("twice").and_then(&JsonValue::integer), 1);
  EXPECT_TRUE(root.member("").has_value());
  EXPECT_FALSE(root.member("b").has_value());
  EXPECT_FALSE((*elements)[0].member("a").has_value());
}

TEST(JsonReaderTest, whatIsNotJsonIsRefused) {
  const std::initializer_list<const char*> numbers = {"01", "+1", "1.", ".5", "NaN", "1e999", "18446744073709551616"};
  const std::initializer_list<const char*> texts = {"'a'",         "\"a\nb\"",    "\"\xFF\"", "\"\xED\xA0\x80\"",
                                                    R"("\ud800")", R"("\udc00")", R"("\x")",  "\"a"};
  const std::initializer_list<const char*> others = {"",         " ",     "{",   "[1,]",     R"({"a":1,})",
                                                     R"({"a"})", "{1:2}", "1 2", "\uFEFF[]", "/**/1"};
  for (const auto& group : {numbers, texts, others}) {
    for (const std::string_view json : group) {
      const auto document = JsonDocument::parse(json);
      ASSERT_FALSE(document) << json;
      EXPECT_EQ(document.error(), Error::malformed) << json;
    }
  }
  EXPECT_FALSE(JsonDocument::parse(std::string_view("[1]\0", 4)));
}

TEST(JsonReaderTest, depthAndLengthHaveLimits) {
  const auto nested = [](std::size_t depth) { return std::string(depth, '[') + "1" + std::string(depth, ']'); };
  EXPECT_TRUE(JsonDocument::parse(nested(64)));
  const auto tooDeep = JsonDocument::parse(nested(65));
  ASSERT_FALSE(tooDeep);
  EXPECT_EQ(tooDeep.error(), Error::tooDeep);

  constexpr std::size_t length = (std::size_t{1} << 30) + 1;
  const auto untouched = std::make_unique_for_overwrite<char[]>(length);
  const auto tooLarge = JsonDocument::parse({untouched.get(), length});
  ASSERT_FALSE(tooLarge);
  EXPECT_EQ(tooLarge.error(), Error::tooLarge);
}

}  // namespace
}  // namespace lumenary
