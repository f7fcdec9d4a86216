#include <gtest/gtest.h>

#include <cerrno>

#include "apps/BackgroundItem.h"
#include "platform/linux/LinuxFileReader.h"
#include "support/HookedReader.h"

namespace lumenary {
namespace {

TEST(BackgroundItem, TellsItsStateByTheWorstThatIsTrue) {
  const struct {
    BackgroundItem item;
    const char* text;
  } cases[] = {
      {{.program = "/gone", .programExists = false, .isDisabled = true}, "Broken: the program it starts is gone"},
      {{.isDisabled = true, .pid = 7}, "Turned off"},
      {{.program = "/bin/true", .pid = 7}, "Running"},
      {{.programExists = false}, "Waiting"},
  };
  for (const auto& [item, text] : cases) {
    EXPECT_EQ(stateText(item), text);
  }
}

TEST(BackgroundItem, WhatMayNotBeLookedAtIsNotCalledGone) {
  const LinuxFileReader real;
  for (const auto& [error, isGone] :
       {std::pair(ENOENT, true), std::pair(ENOTDIR, true), std::pair(ELOOP, true), std::pair(EACCES, false)}) {
    const HookedReader reader(real, [failure = error](auto, auto) { return SystemError{failure}; });
    EXPECT_EQ(isProgramGone(reader, "/root/bin/tool"), isGone) << error;
    EXPECT_FALSE(isProgramGone(reader, "tool"));
  }
}

TEST(BackgroundItem, AKnownAppOwnsTheLabelsThatBeginWithItsIdentifier) {
  const InstalledAppNames apps = {
      {"com.maker", "Maker"}, {"com.Maker.Paint", "Paint"}, {"homebrew.mxcl.redis", "Redis"}};
  const struct {
    const char* label;
    std::optional<std::string> owner;
  } cases[] = {
      {"com.maker", "Maker"},
      {"com.maker.paint.helper", "Paint"},
      {"com.maker.painter", "Maker"},
      {"com.makers.paint", std::nullopt},
      {"homebrew.mxcl.postgresql", "Homebrew · postgresql"},
      {"homebrew.mxcl.redis", "Redis"},
  };
  for (const auto& [label, owner] : cases) {
    EXPECT_EQ(knownBackgroundOwner(label, apps), owner) << label;
  }
}

TEST(BackgroundItem, ALabelNamesItsMakerInItsSecondPiece) {
  EXPECT_EQ(backgroundOwnerOfLabel("com.example.agent"), "Example");
  EXPECT_EQ(backgroundOwnerOfLabel("..com..example"), "Example");
  EXPECT_EQ(backgroundOwnerOfLabel("backup."), "backup.");
  EXPECT_EQ(backgroundOwnerOfLabel(""), "");
}

TEST(BackgroundItem, SentencesCarryNothingThatMovesTheCursor) {
  const BackgroundItem item{.label = "evil\x1b[2J\n", .owner = "Ev\nil"};
  EXPECT_EQ(backgroundText::removalQuestion(item),
            "evil\uFFFD[2J\uFFFD stops now and won't start again. Its file goes to the Trash, so you can put it back.");
  EXPECT_EQ(backgroundText::removed(item),
            "Removed Ev\uFFFDil's background item. It's in the Trash if you need it back.");
  EXPECT_EQ(backgroundText::removalFailed({.label = "a.b"}, "No."),
            "Couldn't remove a.b. Check that you have permission, then try again. (No.)");
  EXPECT_EQ(backgroundText::noMatch("x"), "No background items match “x”");
}

}  // namespace
}  // namespace lumenary
