#include <gtest/gtest.h>

#include "apps/BackgroundItemsScanner.h"
#include "platform/linux/LinuxDurableFiles.h"
#include "platform/linux/LinuxFileReader.h"
#include "platform/linux/LinuxKernel.h"
#include "support/FakeTools.h"
#include "support/TemporaryHome.h"

namespace lumenary {
namespace {

std::string list(const std::string& keys) {
  return R"(<?xml version="1.0"?><plist version="1.0"><dict>)" + keys + "</dict></plist>";
}

TEST(LaunchctlOutput, TellsWhichLabelsAreTurnedOff) {
  const auto labels = disabledLabels(
      "disabled services = {\n"
      "\t\t\"com.example.off\" => disabled\r\n"
      "\n"
      "\t\t\"com.example.on\" => enabled\n"
      "\t\t\"com.example.old\" => true\n"
      "\t\t\"a\" => \"b\" => disabled\n"
      "\tlogin item associations = {\n"
      "\t\tplain => disabled");
  EXPECT_EQ(labels,
            (std::map<std::string, bool, std::less<>>{
                {"com.example.off", true}, {"com.example.on", false}, {"com.example.old", true}, {"plain", true}}));
}

TEST(LaunchctlOutput, TellsWhichLabelsRun) {
  const auto pids = runningPIDs(
      "\nPID\tStatus\tLabel\n"
      "412\t0\tcom.example.agent\n"
      "-\t78\tcom.example.failed\n"
      "77\tcom.example.cut\n"
      "1\t2\t3\tfour\n"
      "99999999999999999999\t0\thuge\n"
      "12x\t0\tno.number");
  EXPECT_EQ(pids, (std::map<std::string, std::int64_t, std::less<>>{{"com.example.agent", 412}}));
  EXPECT_TRUE(runningPIDs("412\t0\tonly.a.header").empty());
}

TEST(LaunchdSchedule, SaysWhenAnItemStarts) {
  const auto interval = [](const char* seconds) {
    return "<key>StartInterval</key><integer>" + std::string(seconds) + "</integer>";
  };
  const std::string atLogin = "<key>RunAtLoad</key><true/>";
  const struct {
    std::string keys;
    const char* text;
  } cases[] = {
      {"", "Starts only when asked"},
      {"<key>RunAtLoad</key><false/><key>KeepAlive</key><false/>", "Starts only when asked"},
      {"<key>KeepAlive</key><true/>", "Kept running"},
      {atLogin + "<key>KeepAlive</key><dict><key>SuccessfulExit</key><false/></dict>",
       "Starts when you log in, kept running"},
      {interval("59"), "Runs every 1 min"},
      {interval("119"), "Runs every 1 min"},
      {interval("120"), "Runs every 2 min"},
      {interval("3599"), "Runs every 59 min"},
      {atLogin + interval("3600"), "Starts when you log in, runs every 1 h"},
      {interval("7199"), "Runs every 1 h"},
      {"<key>StartInterval</key><string>60</string>", "Starts only when asked"},
      {"<key>Sockets</key><dict/><key>QueueDirectories</key><array/><key>StartCalendarInterval</key><dict/>",
       "Runs on a schedule, runs when files change, starts when another program asks"},
      {"<key>MachServices</key><dict/><key>WatchPaths</key><array/>",
       "Runs when files change, starts when another program asks"},
  };
  for (const auto& [keys, text] : cases) {
    EXPECT_EQ(launchdSchedule(*parsePropertyList(list(keys))->dictionary()), text) << keys;
  }
}

TEST(OwnerApp, IsTheOutermostOneThatHoldsTheProgram) {
  const struct {
    const char* program;
    std::optional<std::string> app;
  } cases[] = {
      {"/Applications/Foo.app/Contents/Helper.app/Contents/MacOS/h", "/Applications/Foo.app"},
      {"/Applications/Foo.app", "/Applications/Foo.app"},
      {"/Applications/Foo.apple/x", std::nullopt},
      {"/usr/bin/true", std::nullopt},
  };
  for (const auto& [program, app] : cases) {
    const auto url = ownerAppOf(program);
    EXPECT_EQ(url ? std::optional(url->path) : std::nullopt, app) << program;
  }
}

TEST(BackgroundItemsScanner, ListsTheItemsOfAllFoldersBrokenOnesFirst) {
  TemporaryHome home;
  const auto text = [](const std::string& key, const std::string& value) {
    return "<key>" + key + "</key><string>" + value + "</string>";
  };
  const auto arguments = [](const std::string& word) {
    return "<key>ProgramArguments</key><array><string>" + word + "</string><string>-d</string></array>";
  };
  const std::string disabled = "<key>Disabled</key><true/>";
  const std::string tool = home.path("tool");
  home.write("tool");
  home.write("user/com.example.agent.plist", list(text("Label", "com.example.agent") + arguments(tool) + disabled));
  home.write("user/nameless.plist", list(arguments("relative")));
  home.write("user/damaged.plist", "<plist");
  home.write("user/array.plist", "<plist version=\"1.0\"><array/></plist>");
  home.write("user/other.txt", list(""));
  home.makeFolder("user/folder.plist");
  home.write("all/foo.plist", list(text("Label", "z.foo") + text("Program", home.path("Foo.app/Contents/MacOS/Foo"))));
  home.write("system/daemon.plist", list(text("Label", "com.example.agent") + disabled));

  FakeTools tools;
  tools.answers = {
      {"/bin/launchctl print-disabled gui/501", "\"com.example.agent\" => enabled\n\"z.foo\" => disabled\n"},
      {"/bin/launchctl list", "PID\tStatus\tLabel\n412\t0\tnameless\n"}};
  LinuxKernel kernel;
  LinuxDurableFiles files(kernel);
  const LinuxFileReader reader;
  const BackgroundItemsScanner scanner(
      reader, files, tools, {.user = home.path("user"), .allUsers = home.path("all"), .system = home.path("system")},
      {{"nameless", "A app"}}, 501);
  using Domain = BackgroundItem::Domain;
  const FileURL app{.path = home.path("Foo.app"), .isFolder = true};
  const std::vector<BackgroundItem> expected = {
      {.url = {home.path("all/foo.plist")},
       .label = "z.foo",
       .domain = Domain::allUsers,
       .program = app.path + "/Contents/MacOS/Foo",
       .programExists = false,
       .owner = "Foo",
       .ownerAppURL = app,
       .schedule = "Starts only when asked",
       .isDisabled = true},
      {.url = {home.path("user/nameless.plist")},
       .label = "nameless",
       .program = "relative",
       .owner = "A app",
       .schedule = "Starts only when asked",
       .pid = 412},
      {.url = {home.path("user/com.example.agent.plist")},
       .label = "com.example.agent",
       .program = tool,
       .owner = "Example",
       .schedule = "Starts only when asked"},
      {.url = {home.path("system/daemon.plist")},
       .label = "com.example.agent",
       .domain = Domain::system,
       .owner = "Example",
       .schedule = "Starts only when asked",
       .isDisabled = true},
  };
  EXPECT_EQ(scanner.scan(), expected);

  tools.answers.clear();
  const auto silent = scanner.scan();
  ASSERT_EQ(silent.size(), expected.size()) << "without launchctl the list still shows";
  EXPECT_FALSE(silent[0].isDisabled);
  EXPECT_TRUE(silent[2].isDisabled) << "the file tells";
  EXPECT_EQ(silent[1].pid, std::nullopt);
}

}  // namespace
}  // namespace lumenary
