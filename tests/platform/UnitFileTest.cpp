#include <gtest/gtest.h>

#include "platform/linux/UnitFile.h"

namespace lumenary {
namespace {

using Values = std::vector<std::string>;

TEST(UnitFile, ReadsKeysOfSectionsWithContinuedLinesAndWithoutComments) {
  UnitFile unit;
  unit.read(
      "Description=of no section\n"
      "[Unit]\r\n"
      "  Description = A unit with=equals \r\n"
      "# Description=no\n"
      "; Description=no\n"
      "[Service]\n"
      "ExecStart=/bin/tool one \\\n"
      "# between\n"
      "   two\\\n"
      "three\n"
      "ExecStart=/bin/second\n"
      "no equals sign\n"
      "=no key\n"
      "[Broken\n"
      "ExecStart=/bin/not-counted\n"
      "[Install]\n"
      "WantedBy=default.target\\");
  EXPECT_EQ(unit.value("Unit", "Description"), "A unit with=equals");
  EXPECT_EQ(unit.values("Service", "ExecStart"), (Values{"/bin/tool one     two three", "/bin/second"}));
  EXPECT_EQ(unit.value("Install", "WantedBy"), "default.target");
  EXPECT_EQ(unit.value("", "Description"), "");
  EXPECT_FALSE(unit.hasSection("Broken"));
}

TEST(UnitFile, AnEmptyValueTakesTheFormerOnesAway) {
  UnitFile unit;
  unit.read("[Service]\nExecStart=/bin/a\nRestart=always\n");
  unit.read("[Service]\nExecStart=\nExecStart=/bin/b\n");
  EXPECT_EQ(unit.values("Service", "ExecStart"), Values{"/bin/b"});
  EXPECT_EQ(unit.value("Service", "Restart"), "always");
}

TEST(UnitFile, WhatIsNoUnitCountsAsEmpty) {
  UnitFile unit;
  unit.read(std::string("[Unit]\nDescription=a\0b\n", 23));
  unit.read("[Unit]\n" + std::string(UnitFile::byteLimit, 'x'));
  EXPECT_TRUE(unit.sections().empty());
}

TEST(UnitProgram, IsTheFirstWordWithoutPrefixesAndQuotes) {
  const UnitSpecifiers specifiers{.home = "/home/anna", .user = "anna", .instance = "work"};
  const struct {
    const char* line;
    std::optional<std::string> program;
    bool isResolved;
  } cases[] = {
      {"/usr/bin/tool --flag", "/usr/bin/tool", true},
      {" -@:+!/usr/bin/tool argv0", "/usr/bin/tool", true},
      {R"("/opt/My Tool/bin" x)", "/opt/My Tool/bin", true},
      {R"('/opt/it\'s'"/bin")", "/opt/it's/bin", true},
      {R"(/opt/a\x20b\sc\q)", R"(/opt/a b c\q)", true},
      {"%h/bin/%u-%i%%", "/home/anna/bin/anna-work%", true},
      {"%t/tool", "%t/tool", false},
      {"/bin/100%", "/bin/100%", true},
      {"-", std::nullopt, false},
      {"", std::nullopt, false},
  };
  for (const auto& [line, path, isResolved] : cases) {
    const auto program = unitProgram(line, specifiers);
    EXPECT_EQ(program ? std::optional(program->text) : std::nullopt, path) << line;
    EXPECT_EQ(program && program->isResolved, isResolved) << line;
  }
  EXPECT_FALSE(unitProgram("%h/bin/x", {})->isResolved) << "a home that isn't known";
}

TEST(UnitTimeSpan, AddsUpItsParts) {
  const struct {
    const char* text;
    std::optional<std::int64_t> seconds;
  } cases[] = {
      {"90", 90},        {"5min 20s", 320},    {"1h30m", 5400},   {"2 d", 172'800},
      {"1.5h", 5400},    {"1500ms", 1},        {"1M", 2'629'800}, {"infinity", {}},
      {"5 parsecs", {}}, {"-5s", {}},          {"", {}},          {"99999999999999 years", {}},
      {"nan", {}},       {"1w 1w", 1'209'600}, {"10s x", {}},
  };
  for (const auto& [text, seconds] : cases) {
    EXPECT_EQ(unitTimeSpan(text), seconds) << text;
  }
}

TEST(UnitName, HoldsOnlyWhatSystemdAllows) {
  EXPECT_TRUE(isUnitName("app-org.x\\x2dy@work.service"));
  EXPECT_FALSE(isUnitName("no-kind"));
  EXPECT_FALSE(isUnitName("a b.service"));
  EXPECT_FALSE(isUnitName(std::string(250, 'a') + ".service"));
  EXPECT_EQ(unitNameEscaped("org.x-y z/.\xff"), "org.x\\x2dy\\x20z-.\\xff");
  EXPECT_EQ(unitNameEscaped(".x"), "\\x2ex");
}

}  // namespace
}  // namespace lumenary
