#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "platform/linux/LinuxToolRunner.h"

namespace lumenary {
namespace {

using std::chrono::milliseconds;

ToolCommand shell(const std::string& script) { return {.path = "/bin/sh", .arguments = {"-c", script}}; }

TEST(ToolRunner, TellsWhatAToolWroteAndHowItEnded) {
  const LinuxToolRunner tools;
  EXPECT_EQ(tools.run({.path = "/bin/echo", .arguments = {"a b", "$HOME;"}}), (ToolOutput{0, "a b $HOME;\n"}));
  EXPECT_EQ(tools.run(shell("echo out; echo err >&2; exit 3")), (ToolOutput{3, "out\n"}));
  EXPECT_EQ(tools.run(shell("kill -TERM $$")), (ToolOutput{-1, ""}));
  EXPECT_EQ(tools.run(shell("cat; echo $LC_ALL")), (ToolOutput{0, "C\n"}));
  EXPECT_EQ(tools.run({.path = "/nowhere/tool", .arguments = {}}), std::nullopt);
}

TEST(ToolRunner, GivesTextOnlyWhereItIsText) {
  const LinuxToolRunner tools;
  EXPECT_EQ(toolText(tools, shell("printf 'gr\\303\\274n'; exit 1")), "gr\u00FCn");
  EXPECT_EQ(toolText(tools, shell("printf '\\377'")), std::nullopt);
}

TEST(ToolRunner, EndsAToolThatHangsOrSaysTooMuch) {
  const LinuxToolRunner tools;
  ToolCommand hung = shell("sleep 1000 & sleep 1000");
  hung.timeLimit = milliseconds(50);
  EXPECT_EQ(tools.run(hung), std::nullopt);

  ToolCommand endless = shell("yes");
  endless.outputLimit = 100'000;
  EXPECT_EQ(tools.run(endless), std::nullopt);

  ToolCommand exact = shell("printf 12345");
  exact.outputLimit = 5;
  EXPECT_EQ(tools.run(exact), (ToolOutput{0, "12345"}));
}

TEST(ToolRunner, LeavesAToolAloneThatIgnoresTheRequest) {
  const LinuxToolRunner tools;
  ToolCommand stubborn = shell("trap '' TERM; while :; do sleep 0.2 || exit; test -e /proc/$PPID || exit; done");
  stubborn.timeLimit = milliseconds(50);
  EXPECT_EQ(tools.run(stubborn), std::nullopt);
  EXPECT_EQ(tools.run(shell("echo next")), (ToolOutput{0, "next\n"}));
}

}  // namespace
}  // namespace lumenary
