#include <gtest/gtest.h>

#include "apps/LinuxBackgroundItemsController.h"
#include "apps/LinuxBackgroundItemsScanner.h"
#include "cleanup/CleanupJournal.h"
#include "platform/linux/LinuxDurableFiles.h"
#include "support/FakeTools.h"
#include "support/LinuxTrashTest.h"

namespace lumenary {
namespace {

using Domain = BackgroundItem::Domain;

TEST(LinuxStartupPlaces, AreThoseOfThisPerson) {
  const std::map<std::string, std::string> variables = {
      {"USER", "anna"}, {"XDG_CURRENT_DESKTOP", "ubuntu:GNOME"}, {"XDG_CONFIG_DIRS", "relative:/etc/x//:"}};
  Places home;
  home.home = "/h";
  home.dataHome = "/h/data";
  home.configHome = "/h/config";
  const auto places = linuxStartupPlaces(
      [&](const char* name) {
        const auto found = variables.find(name);
        return found == variables.end() ? nullptr : found->second.c_str();
      },
      home);
  EXPECT_EQ(places.userUnits.front().path, "/h/config/systemd/user");
  EXPECT_EQ(places.userUnits.at(3).path, "/h/data/systemd/user");
  ASSERT_EQ(places.autostart.size(), 2U);
  EXPECT_EQ(places.autostart[1].path, "/etc/x/autostart");
  EXPECT_EQ(places.autostart[1].domain, Domain::allUsers);
  EXPECT_EQ(places.desktops, (std::vector<std::string>{"ubuntu", "GNOME"}));
  EXPECT_EQ(linuxStartupPlaces([](const char*) { return nullptr; }, {}).autostart.at(0).path, "/etc/xdg/autostart");
}

/// A home with units and entries, a Trash of its own, and a systemctl that answers what a test tells it to.
class LinuxBackgroundItems : public LinuxTrashTest {
 protected:
  LinuxBackgroundItems() {
    startup.userUnits = {{home.path(".config/systemd/user"), Domain::user}, {home.path("lib/user"), Domain::allUsers}};
    startup.systemUnits = {{home.path("lib/system"), Domain::system}};
    startup.autostart = {{home.path(".config/autostart"), Domain::user}, {home.path("xdg"), Domain::allUsers}};
    startup.home = home.root();
  }

  std::vector<BackgroundItem> scan() {
    return LinuxBackgroundItemsScanner(reader, files, tools, startup,
                                       {{"org.maker.Mail", "Mail"}, {"syncer", "Syncer"}})
        .scan();
  }
  BackgroundItem item(const std::string& label) {
    for (const BackgroundItem& each : scan()) {
      if (each.label == label) {
        tools.calls.clear();
        return each;
      }
    }
    ADD_FAILURE() << "no item " << label;
    return {};
  }
  std::vector<std::string> calls() const {
    std::vector<std::string> commands;
    for (const std::string& call : tools.calls) {
      commands.push_back(call.substr(std::string("/usr/bin/systemctl --user ").size()));
    }
    return commands;
  }
  LinuxBackgroundItemsController controller() { return {reader, files, tools, removal, startup}; }
  std::string unit(const std::string& name) { return home.path(".config/systemd/user/" + name); }

  FakeTools tools;
  LinuxDurableFiles files{kernel};
  LinuxStartupPlaces startup;
  BackgroundItemRemoval removal{reader, files, trash, places.support};
};

TEST_F(LinuxBackgroundItems, AreToldLikeThoseOfAnySystem) {
  home.write("bin/sync");
  home.build({
      {".config/systemd/user/syncer@.service",
       Content{"[Unit]\nDescription=Sync %i\n[Service]\nExecStart=%h/bin/sync\n"}},
      {".config/systemd/user/default.target.wants/syncer@work.service", LinkTo{"../syncer@.service"}},
      {".config/systemd/user/broken.service",
       Content{"[Service]\nExecStart=-%h/gone\n[Install]\nWantedBy=default.target\n"}},
      {".config/systemd/user/odd.service", Content{"[Unit]\nDescription=Odd\x1b one\n[Service]\nExecStart=%t/tool\n"}},
      {"lib/user/jobs.timer", Content{"[Timer]\nOnUnitActiveSec=10min\n"}},
      {"lib/user/jobs.service", Content{"[Service]\nExecStart=/gone/tool\nRootDirectory=/other\n"}},
      {"lib/user/timers.target.wants/jobs.timer", LinkTo{"../jobs.timer"}},
      {"lib/system/cron.service", Content{"[Unit]\nDescription=Cron\n[Service]\nExecStart=/\n"}},
      {"lib/system/multi-user.target.wants/cron.service", LinkTo{"../cron.service"}},
      {"xdg/org.maker.Mail.desktop", Content{"[Desktop Entry]\nName=E-Mail\nExec=mail\n"}},
  });
  const std::string list = " list-units --type=service,timer,socket,path --all --plain --no-legend --no-pager --full";
  const std::string show = " show --no-pager --property=Id,MainPID,UnitFileState -- ";
  tools.answers = {
      {"/usr/bin/systemctl --user" + list,
       "app-org.maker.Mail@autostart.service loaded active running E-Mail\njobs.service loaded active running x\n"},
      {"/usr/bin/systemctl --user" + show + "app-org.maker.Mail@autostart.service jobs.service",
       "Id=app-org.maker.Mail@autostart.service\nMainPID=11\n\nId=jobs.service\nMainPID=12\n"},
      {"/usr/bin/systemctl" + list, "cron.service loaded active running Cron\n"},
      {"/usr/bin/systemctl" + show + "cron.service", "Id=cron.service\nMainPID=13\nUnitFileState=masked-runtime\n"},
  };
  const std::vector<BackgroundItem> expected = {
      {.url = {unit("broken.service")},
       .label = "broken.service",
       .program = home.path("gone"),
       .programExists = false,
       .owner = "broken",
       .schedule = "Starts when you log in",
       .isDisabled = true},
      {.url = {home.path("lib/system/cron.service")},
       .label = "cron.service",
       .domain = Domain::system,
       .program = "/",
       .owner = "Cron",
       .schedule = "Starts when you log in",
       .isDisabled = true,
       .pid = 13},
      {.url = {home.path("lib/user/jobs.timer")},
       .label = "jobs.timer",
       .domain = Domain::allUsers,
       .program = "/gone/tool",
       .owner = "jobs",
       .schedule = "Runs every 10 min",
       .pid = 12},
      {.url = {home.path("xdg/org.maker.Mail.desktop")},
       .label = "org.maker.Mail",
       .domain = Domain::allUsers,
       .program = "mail",
       .owner = "Mail",
       .schedule = "Starts when you log in",
       .pid = 11},
      {.url = {unit("odd.service")},
       .label = "odd.service",
       .program = "%t/tool",
       .owner = "Odd\uFFFD one",
       .schedule = "Starts only when asked"},
      {.url = {unit("default.target.wants/syncer@work.service")},
       .label = "syncer@work.service",
       .program = home.path("bin/sync"),
       .owner = "Syncer",
       .schedule = "Starts when you log in"},
  };
  EXPECT_EQ(scan(), expected);
  tools.answers.clear();
  EXPECT_EQ(scan().size(), expected.size()) << "without systemctl the list still shows";
}

TEST_F(LinuxBackgroundItems, AreBrokenOnlyWhereTheProgramIsMissed) {
  const struct {
    const char* text;
    bool isBroken;
  } cases[] = {
      {"[Service]\nExecStart=/gone/tool\n", true},
      {"[Service]\nExecStart=gone-tool\n", false},
      {"[Service]\nExecStart=/gone/%n\n", false},
      {"[Service]\nExecStart=/gone/tool\nRootImage=/image\n", false},
      {"[Unit]\nConditionFileIsExecutable=/gone/tool\n[Service]\nExecStart=/gone/tool\n", false},
      {"[Unit]\nConditionPathExists=/gone\n[Service]\nExecStart=/gone/tool\n", true},
      {"[Service]\nExecStart=\n", false},
  };
  for (const auto& [text, isBroken] : cases) {
    home.write(".config/systemd/user/a.service", text);
    EXPECT_EQ(item("a.service").isBroken(), isBroken) << text;
  }
}

TEST_F(LinuxBackgroundItems, UnitsAreSwitchedOnlyWhereTheyArePersonal) {
  home.write(".config/systemd/user/a.service", "[Unit]\n");
  home.write(".config/systemd/user/b.timer", "[Timer]\n");
  home.build({{"repo/c.service", Content{"[Unit]\n"}},
              {".config/systemd/user/c.service", LinkTo{home.path("repo/c.service")}},
              {"lib/user/d.service", Content{"[Unit]\n"}},
              {"lib/user/x.target.wants/d.service", LinkTo{"../d.service"}}});
  const auto switched = [&](const std::string& label, bool enabled) {
    controller().setEnabled(item(label), enabled);
    return calls();
  };
  using Calls = std::vector<std::string>;
  EXPECT_EQ(switched("a.service", true), Calls{"enable --now -- a.service"});
  EXPECT_EQ(switched("a.service", false), Calls{"disable --now -- a.service"});
  tools.answers["/usr/bin/systemctl --user show --property=Triggers --value -- b.timer"] = "b.service --bad\n";
  EXPECT_EQ(switched("b.timer", false), (Calls{"show --property=Triggers --value -- b.timer", "is-enabled -- b.service",
                                               "disable --now -- b.timer", "stop -- b.service"}));
  // What is on by itself, or is no service, goes on.
  tools.answers["/usr/bin/systemctl --user show --property=Triggers --value -- b.timer"] = "b.service some.target\n";
  tools.answers["/usr/bin/systemctl --user is-enabled -- b.service"] = "enabled\n";
  EXPECT_EQ(switched("b.timer", false), (Calls{"show --property=Triggers --value -- b.timer", "is-enabled -- b.service",
                                               "disable --now -- b.timer"}));
  EXPECT_EQ(switched("c.service", false), Calls{});
  EXPECT_FALSE(controller().canSwitch(item("c.service")));
  EXPECT_EQ(switched("d.service", false), Calls{});
  EXPECT_TRUE(controller().remove(item("d.service")).has_value());
  EXPECT_EQ(calls(), Calls{});
  EXPECT_TRUE(standsAt(home.path("lib/user/d.service")));
}

TEST_F(LinuxBackgroundItems, RemovingStopsTheUnitAndMovesItsFileOrItsLink) {
  home.write(".config/systemd/user/a.service", "[Unit]\n");
  home.build({{"repo/c.service", Content{"[Unit]\n"}},
              {".config/systemd/user/c.service", LinkTo{home.path("repo/c.service")}}});
  using Calls = std::vector<std::string>;
  EXPECT_TRUE(controller().remove(item("a.service")).has_value());
  EXPECT_EQ(calls(), (Calls{"disable --now -- a.service", "daemon-reload"}));
  EXPECT_EQ(contentsOf(home.trash("files/a.service")), "[Unit]\n");
  EXPECT_TRUE(standsAt(home.trash("info/a.service.trashinfo")));
  EXPECT_TRUE(controller().remove(item("c.service")).has_value());
  EXPECT_EQ(calls(), (Calls{"stop -- c.service", "disable -- c.service", "daemon-reload"}));
  EXPECT_TRUE(standsAt(home.trash("files/c.service")));
  EXPECT_EQ(contentsOf(home.path("repo/c.service")), "[Unit]\n") << "what the link led to stays";
  for (const std::string& name : namesIn(CleanupJournal::folder(places.support))) {
    EXPECT_FALSE(name.ends_with(CleanupJournal::fileExtension)) << name;
  }
}

TEST_F(LinuxBackgroundItems, AnInstalledEntryIsSwitchedByAFileOfThePersons) {
  const std::string entry = "[Desktop Entry]\n# note\nName=Mail\nExec=mail\n";
  home.write("xdg/mail.desktop", entry);
  const std::string own = home.path(".config/autostart/mail.desktop");
  controller().setEnabled(item("mail"), false);
  EXPECT_EQ(contentsOf(own), "[Desktop Entry]\nHidden=true\n# note\nName=Mail\nExec=mail\n");
  EXPECT_EQ(contentsOf(home.path("xdg/mail.desktop")), entry);
  EXPECT_EQ(stateText(item("mail")), "Turned off");

  EXPECT_TRUE(controller().remove(item("mail")).has_value()) << "without its file the installed one would start again";
  EXPECT_TRUE(standsAt(own));
  controller().setEnabled(item("mail"), true);
  EXPECT_EQ(contentsOf(own), entry);

  home.write(".config/autostart/mail.desktop", "[Desktop Entry]\nHidden=true\n");
  controller().setEnabled(item("mail"), true);
  EXPECT_EQ(contentsOf(own), entry) << "a file that only hid the installed one has nothing to start";
}

TEST_F(LinuxBackgroundItems, AnEntryOfThePersonsIsSwitchedAndRemoved) {
  home.write(".config/autostart/a.desktop", "[Desktop Entry]\nExec=a\n");
  BackgroundItem entry = item("a");
  entry.pid = 7;
  controller().setEnabled(entry, false);
  EXPECT_EQ(calls(), std::vector<std::string>{"stop -- app-a@autostart.service"});
  EXPECT_EQ(stateText(item("a")), "Turned off");
  EXPECT_TRUE(controller().remove(item("a")).has_value());
  EXPECT_TRUE(standsAt(home.trash("files/a.desktop")));
  EXPECT_TRUE(scan().empty());
}

}  // namespace
}  // namespace lumenary
