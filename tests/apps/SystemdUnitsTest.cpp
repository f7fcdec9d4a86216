#include <gtest/gtest.h>

#include "apps/SystemdSchedule.h"
#include "apps/SystemdState.h"
#include "apps/SystemdUnits.h"
#include "platform/linux/LinuxDurableFiles.h"
#include "platform/linux/LinuxFileReader.h"
#include "platform/linux/LinuxKernel.h"
#include "support/FakeTools.h"
#include "support/TemporaryHome.h"

namespace lumenary {
namespace {

using Domain = BackgroundItem::Domain;

/// The folders of a systemd below a home: "own" before "etc" before "lib".
struct MadeUnits {
  TemporaryHome home;
  LinuxKernel kernel;
  LinuxDurableFiles files{kernel};
  LinuxFileReader reader;

  SystemdUnits units() {
    return {
        reader,
        files,
        {{home.path("own"), Domain::user}, {home.path("etc"), Domain::allUsers}, {home.path("lib"), Domain::allUsers}}};
  }
  /// "name path domain, off"; paths below the home.
  std::vector<std::string> starting() {
    std::vector<std::string> lines;
    for (const SystemdUnit& unit : units().starting()) {
      std::string starters;
      for (const std::string& starter : unit.startedBy) {
        starters += " <" + starter;
      }
      lines.push_back(unit.name + " " + unit.path.substr(home.root().size() + 1) +
                      (unit.domain == Domain::user ? " own" : " all") + (unit.isMasked ? " masked" : "") + starters);
    }
    return lines;
  }
};

TEST(SystemdUnits, StartingAreEnabledUnitsAndThePersonsOwn) {
  const Content unit{"[Unit]\n"};
  const struct {
    const char* name;
    std::vector<TreeEntry> tree;
    std::vector<std::string> starting;
  } cases[] = {
      {"an installed unit counts where a link starts it",
       {{"lib/a.service", unit},
        {"lib/b.service", unit},
        {"lib/c.target", unit},
        {"etc/default.target.wants/a.service", LinkTo{"../../lib/a.service"}},
        {"own/x.target.requires/a.service", LinkTo{"/anywhere"}},
        {"own/x.target.wants/gone.service", LinkTo{"/gone"}},
        {"own/x.target.wants/c.target", LinkTo{"../../lib/c.target"}}},
       {"a.service lib/a.service all <default.target <x.target"}},
      {"the person's own count in any state",
       {{"own/a.service", unit}, {"own/b.mount", unit}, {"own/readme.txt"}, {"own/bad name.service", unit}},
       {"a.service own/a.service own"}},
      {"a service is left to its trigger",
       {{"own/a.service", unit},
        {"own/a.timer", unit},
        {"own/b.service", unit},
        {"own/c.path", Content{"[Path]\nUnit=b.service\n"}}},
       {"a.timer own/a.timer own", "c.path own/c.path own"}},
      {"unless it starts by itself as well",
       {{"own/a.service", unit}, {"own/a.timer", unit}, {"own/default.target.wants/a.service", LinkTo{"../a.service"}}},
       {"a.service own/a.service own <default.target", "a.timer own/a.timer own"}},
      {"a mask keeps an installed unit from starting",
       {{"lib/a.service", unit},
        {"own/a.service", LinkTo{"/dev/null"}},
        {"own/b.service", LinkTo{"/dev/null"}},
        {"own/empty.service"}},
       {"a.service lib/a.service all masked", "b.service own/b.service own masked",
        "empty.service own/empty.service own masked"}},
      {"a masked link starts nothing",
       {{"lib/a.service", unit},
        {"lib/x.target.wants/a.service", LinkTo{"../a.service"}},
        {"own/x.target.wants/a.service", LinkTo{"/dev/null"}}},
       {}},
      {"an own file over an installed one isn't the person's alone",
       {{"lib/a.service", unit}, {"own/a.service", unit}},
       {"a.service own/a.service all"}},
      {"instances come from their template",
       {{"own/sync@.service", unit},
        {"own/x.target.wants/sync@a.service", LinkTo{"../sync@.service"}},
        {"own/x.target.wants/sync@b.service", LinkTo{"../sync@.service"}}},
       {"sync@a.service own/x.target.wants/sync@a.service own <x.target",
        "sync@b.service own/x.target.wants/sync@b.service own <x.target"}},
      {"an alias is no unit of its own",
       {{"own/a.service", unit},
        {"own/b.service", LinkTo{"a.service"}},
        {"own/c.service", LinkTo{"a.service"}},
        {"own/x.target.wants/c.service", LinkTo{"../a.service"}}},
       {"a.service own/a.service own <x.target"}},
      {"links that lead nowhere or round, and folders, are no units",
       {{"own/a.service", LinkTo{"b.service"}},
        {"own/b.service", LinkTo{"a.service"}},
        {"own/c.service", LinkTo{"/gone"}},
        {"own/d.service/"}},
       {}},
  };
  for (const auto& [name, tree, starting] : cases) {
    MadeUnits made;
    for (const TreeEntry& entry : tree) {
      made.home.build({entry});
    }
    EXPECT_EQ(made.starting(), starting) << name;
  }
}

TEST(SystemdUnits, DropInsLieOverTheUnitTheNearestOfEachName) {
  MadeUnits made;
  made.home.write("lib/a@.service", "[Service]\nExecStart=/bin/a\nRestart=no\n");
  made.home.write("lib/a@.service.d/10.conf", "[Service]\nRestart=on-failure\n");
  made.home.write("etc/a@.service.d/10.conf", "[Service]\nRestart=always\n");
  made.home.write("own/a@x.service.d/20.conf", "[Service]\nExecStart=\nExecStart=/bin/b\n");
  made.home.write("own/a@x.service.d/30.txt", "[Service]\nRestart=no\n");
  const auto unit = made.units().find("a@x.service");
  ASSERT_TRUE(unit.has_value());
  EXPECT_EQ(unit->settings.values("Service", "ExecStart"), std::vector<std::string>{"/bin/b"});
  EXPECT_EQ(unit->settings.value("Service", "Restart"), "always");
}

TEST(SystemdUnits, ATriggerNamesItsService) {
  const struct {
    const char* name;
    const char* text;
    const char* triggered;
  } cases[] = {
      {"a.timer", "[Timer]\n", "a.service"},
      {"a.timer", "[Timer]\nUnit=b.service\n", "b.service"},
      {"a.path", "[Path]\nUnit=--evil; x\n", "a.service"},
      {"a.socket", "[Socket]\nService=b.service\n", "b.service"},
      {"a.socket", "[Socket]\nAccept=yes\n", ""},
      {"a.service", "[Service]\n", ""},
  };
  for (const auto& [name, text, triggered] : cases) {
    SystemdUnit unit{.name = name, .path = ""};
    unit.settings.read(text);
    EXPECT_EQ(unit.triggered(), triggered) << name << text;
  }
}

TEST(SystemdSchedule, SaysWhenAUnitStarts) {
  const std::string service = "[Service]\nRestart=always\n";
  const struct {
    const char* name;
    std::vector<std::string> startedBy;
    std::string text;
    const char* schedule;
  } cases[] = {
      {"a.service", {}, "[Service]\nRestart=no\n", "Starts only when asked"},
      {"a.service", {"default.target"}, "", "Starts when you log in"},
      {"a.service", {"sleep.target"}, service, "Kept running"},
      {"a.service",
       {},
       service + "[Install]\nWantedBy=x.target graphical-session.target\n",
       "Starts when you log in, kept running"},
      {"a.service",
       {"multi-user.target"},
       "[Service]\nRestart=on-failure\nBusName=org.x\n",
       "Starts when you log in, kept running, starts when another program asks"},
      {"a.timer", {"timers.target"}, "[Timer]\nOnBootSec=15min\nOnUnitActiveSec=1d\n", "Runs every 24 h"},
      {"a.timer", {}, "[Timer]\nOnUnitInactiveSec=30s\nOnCalendar=daily\n", "Runs every 1 min, runs on a schedule"},
      {"a.timer", {}, "[Timer]\nOnStartupSec=5min\n", "Starts when you log in"},
      {"a.timer", {}, "[Timer]\nOnUnitActiveSec=soon\n", "Runs on a schedule"},
      {"a.path", {}, "[Path]\nPathModified=%h/x\n", "Runs when files change"},
      {"a.socket", {"sockets.target"}, "[Socket]\nListenStream=%t/x\n", "Starts when another program asks"},
  };
  for (const auto& [name, startedBy, text, schedule] : cases) {
    SystemdUnit unit{.name = name, .path = "", .startedBy = startedBy};
    unit.settings.read(text);
    EXPECT_EQ(systemdSchedule(unit, unit.settings), schedule) << name << text;
  }
}

TEST(SystemdState, AsksOnceForWhatIsLoaded) {
  const std::string list =
      "/usr/bin/systemctl --user list-units --type=service,timer,socket,path --all --plain --no-legend --no-pager "
      "--full";
  FakeTools tools;
  tools.answers[list] =
      "dbus.service                  loaded    active   running D-Bus User Message Bus\n"
      "backup.timer                  loaded    active   waiting Backup every day\n"
      "gone.service                  not-found inactive dead    gone.service\n";
  tools.answers
      ["/usr/bin/systemctl --user show --no-pager --property=Id,MainPID,UnitFileState -- backup.timer dbus.service"] =
      "Id=backup.timer\nUnitFileState=enabled\n\nMainPID=812\nId=dbus.service\nUnitFileState=static\n";
  EXPECT_EQ(
      askUnitStates(tools, "/usr/bin/systemctl", true, {"backup.timer", "dbus.service", "other.service"}),
      (UnitStates{{"backup.timer", {.fileState = "enabled"}}, {"dbus.service", {.pid = 812, .fileState = "static"}}}));
  tools.calls.clear();
  EXPECT_TRUE(askUnitStates(tools, "/usr/bin/systemctl", true, {"other.service"}).empty());
  EXPECT_TRUE(askUnitStates(tools, "/usr/bin/systemctl", false, {"dbus.service"}).empty()) << "no systemd answers";
  EXPECT_EQ(tools.calls.size(), 2U);
}

TEST(SystemdState, TakesNothingFromWhatIsNoAnswer) {
  EXPECT_TRUE(unitStates("MainPID=5\n\nId=\nMainPID=6\nFailed to get properties").empty());
  EXPECT_EQ(unitStates("Id=a.service\nMainPID=0"), (UnitStates{{"a.service", {}}}));
  EXPECT_EQ(unitStates("Id=a.service\nMainPID=-4x"), (UnitStates{{"a.service", {}}}));
}

}  // namespace
}  // namespace lumenary
