#include <set>

#include "desktop/DesktopHome.h"

// What the keyboard and a screen reader meet in every room.

namespace lumenary {
namespace {

using enum QAccessible::Role;

class Controls : public DesktopHome {
 protected:
  void SetUp() override {
    DesktopHome::SetUp();
    home.home.build({{"Documents/film.mkv", 30 * mebibyte},
                     {"Documents/copy.mkv", 30 * mebibyte},
                     {".cache/pip/http/x", 60 * mebibyte}});
    for (int number = 0; number < 15; ++number) {
      const std::string name = "app " + std::to_string(number);
      home.processes.next.apps.push_back({.pid = number + 1, .path = "/apps/" + name, .id = name, .name = name});
      home.processes.next.processes.push_back(
          {.pid = number + 1, .footprintBytes = 50 * mebibyte, .appPath = "/apps/" + name});
    }
    openHome();
  }

  void expectNames(const std::string& place) {
    int controls = 0;
    for (const Control& control : root().all()) {
      const bool isControl = pressed.contains(control.role()) || control.state().focusable;
      controls += isControl ? 1 : 0;
      EXPECT_FALSE(isControl && control.name().trimmed().isEmpty())
          << place << ": a control without a name, role " << control.role();
      EXPECT_FALSE(isControl && (control.role() == NoRole || control.role() == Client))
          << place << ": a control of no kind: " << control.name().toStdString();
      EXPECT_FALSE(pressed.contains(control.role()) && control.role() != EditableText && !control.canBePressed())
          << place << ": can't be pressed: " << control.name().toStdString();
    }
    EXPECT_GE(controls, 7) << place;
  }

  /// Tab comes to each control once, brings it into sight, and comes back to where it began. What is in a row of a list
  /// it reaches while that is the current one.
  void expectRound(const std::string& place) {
    std::set<QQuickItem*> missed;
    for (const Control& control : root().all()) {
      if (pressed.contains(control.role()) && control.parent().role() != ListItem && !control.isHidden() &&
          control.item()->isEnabled()) {
        missed.insert(control.item());
      }
    }
    std::vector<QQuickItem*> round;
    std::string words;
    for (key(Qt::Key_Tab); std::ranges::find(round, window().activeFocusItem()) == round.end(); key(Qt::Key_Tab)) {
      expectFocusInSight(place);
      round.push_back(window().activeFocusItem());
      missed.erase(round.back());
      words += focused().toStdString() + ", ";
      ASSERT_LT(round.size(), 200U) << place;
    }
    // A list is entered again where it was left: at a button in its first row.
    EXPECT_LE(std::ranges::find(round, window().activeFocusItem()) - round.begin(), 1)
        << place << ": a trap at " << focused().toStdString() << " in " << words;
    for (QQuickItem* const item : missed) {
      ADD_FAILURE() << place
                    << ": not reached: " << Control(QAccessible::queryAccessibleInterface(item)).name().toStdString();
    }
  }

  inline static const std::set<QAccessible::Role> pressed = {PushButton, CheckBox,     RadioButton, MenuItem,
                                                             PageTab,    EditableText, ButtonMenu};
};

const std::vector<std::pair<Qt::Key, QString>> rooms = {{Qt::Key_1, "Overview"}, {Qt::Key_2, "Storage"},
                                                        {Qt::Key_3, "Clean"},    {Qt::Key_4, "Apps"},
                                                        {Qt::Key_5, "Memory"},   {Qt::Key_6, "Ports & Projects"}};

TEST_F(Controls, OfEveryRoomHaveNamesAndAreReachedByTab) {
  for (const auto& [number, title] : rooms) {
    key(number, Qt::ControlModifier);
    ASSERT_TRUE(waitFor([&, room = title] { return find(PageTab, room).state().selected; })) << title.toStdString();
    ASSERT_TRUE(waitFor([&] { return has(Heading, ""); })) << title.toStdString();
    expectNames(title.toStdString());
    expectRound(title.toStdString());
  }
}

TEST_F(Controls, OfFullRoomsInASmallWindowComeIntoSight) {
  for (int number = 0; number < 15; ++number) {
    const std::string name = "thing " + std::to_string(number);
    home.home.build({{"Music/" + name, 1000}, {".cache/" + name + "/x", 2 * mebibyte}});
  }
  model->scanStorage(home.url());
  ASSERT_TRUE(waitFor([&] {
    return !*model->isScanning && model->tidyPlan->has_value() && model->tidyPlan->value().items.size() > 14;
  })) << shownText();
  for (int number = 0; number < 15; ++number) {
    model->run([](AppModel& of, FileEntry entry) -> Task<> {
      std::vector<FileEntry> entries{std::move(entry)};
      co_await of.removeStorageEntries(std::move(entries), CleanupTransaction::Source::storage);
    }(*model, fileEntry(at("Music/thing " + std::to_string(number)), 4096)));
  }
  ASSERT_TRUE(waitFor([&] { return model->cleanupTransactions->size() == 15; }));
  window().resize(window().minimumSize());
  ASSERT_TRUE(waitFor([&] { return window().contentItem()->width() == window().minimumWidth(); }));
  for (const auto& [number, title] : rooms) {
    key(number, Qt::ControlModifier);
    ASSERT_TRUE(waitFor([&, room = title] { return find(PageTab, room).state().selected; })) << title.toStdString();
    if (number == Qt::Key_5) {
      ASSERT_TRUE(waitFor([&] { return has(PushButton, "Quit app 14"); })) << shownText();
    }
    expectRound(title.toStdString());
  }
  key(Qt::Key_3, Qt::ControlModifier);
  click(RadioButton, "History");
  waitForControl(ListItem, "thing");
  expectRound("History");
  tabTo("History");
  key(Qt::Key_Tab);
  key(Qt::Key_End);
  key(Qt::Key_Tab);
  EXPECT_EQ(focused().toStdString(), "Put Back thing 0");
  expectFocusInSight("the oldest act");
}

TEST_F(Controls, OfAnOpenMenuAreItsEntries) {
  key(Qt::Key_2, Qt::ControlModifier);
  tabTo("Drive:");
  key(Qt::Key_Return);
  ASSERT_TRUE(waitFor([&] { return has(MenuItem, "Choose a Folder…"); })) << shownText();
  expectNames("menu");
  key(Qt::Key_Escape);
  EXPECT_TRUE(focused().startsWith("Drive:")) << focused().toStdString();
  EXPECT_FALSE(has(MenuItem, ""));
}

TEST_F(Controls, OfAQuestionAreYesAndNoAndNothingElse) {
  key(Qt::Key_K, Qt::ControlModifier);
  type("film");
  click(ListItem, "film.mkv");
  click(PushButton, "Move to Trash");
  waitForSheet("Move “film.mkv” to the Trash?");
  expectNames("question");
  for (const auto& [pressedKey, words] :
       std::vector<std::pair<Qt::Key, std::string>>{{Qt::Key_Tab, "Move to Trash"},
                                                    {Qt::Key_Tab, "Cancel"},
                                                    {Qt::Key_Backtab, "Move to Trash"},
                                                    {Qt::Key_Left, "Cancel"},
                                                    {Qt::Key_Delete, "Cancel"},
                                                    {Qt::Key_Down, "Cancel"}}) {
    key(pressedKey, pressedKey == Qt::Key_Backtab ? Qt::ShiftModifier : Qt::NoModifier);
    EXPECT_EQ(focused().toStdString(), words);
    expectFocusInSight("question");
  }
  key(Qt::Key_Return);
  EXPECT_FALSE(has(Dialog, ""));
  expectFocusInSight("after no");
  key(Qt::Key_Return);
  EXPECT_TRUE(stands("Documents/film.mkv")) << "a question that is gone can't be answered";
}

TEST_F(Controls, OfAQuestionKeepTheKeyboardUntilItIsAnswered) {
  key(Qt::Key_F1);
  waitForSheet("Hearthkeep Help");
  expectNames("help");
  std::set<std::string> reached;
  for (int step = 0; step < 20; ++step) {
    reached.insert(focused().toStdString());
    key(Qt::Key_Tab);
  }
  EXPECT_EQ(reached, (std::set<std::string>{"Help", "Privacy", "Release Notes", "About", "Export Diagnostics…",
                                            "Quit Hearthkeep", "Close"}));
  key(Qt::Key_3, Qt::ControlModifier);
  EXPECT_TRUE(has(Dialog, "Hearthkeep Help")) << "the rooms wait";
  key(Qt::Key_Escape);
  EXPECT_FALSE(has(Dialog, ""));
  EXPECT_NE(window().activeFocusItem(), nullptr);
}

TEST_F(Controls, OfTheMapAreItsTiles) {
  key(Qt::Key_2, Qt::ControlModifier);
  tabTo("Map of the folder");
  key(Qt::Key_Down);
  const QString first = focused();
  EXPECT_NE(first.indexOf("MB"), -1) << first.toStdString();
  key(Qt::Key_Down);
  EXPECT_NE(focused(), first);
  key(Qt::Key_Up);
  EXPECT_EQ(focused(), first);
  ASSERT_TRUE(waitFor([&] { return has(Heading, first.section(',', 0, 0).section(". ", 1)); }))
      << "it is chosen as well";
  key(Qt::Key_Return);
  ASSERT_TRUE(waitFor([&] { return !has(ListItem, "Documents,"); })) << "the folder is open\n" << shownText();
  key(Qt::Key_Backspace);
  ASSERT_TRUE(waitFor([&] { return has(ListItem, "Documents,"); })) << shownText();
}

TEST_F(Controls, OfAClosedWindowAskForNothing) {
  EXPECT_TRUE(model->monitoringCoordinator().surfaces().contains(MonitoringSurface::mainWindow));
  key(Qt::Key_1, Qt::ControlModifier);
  key(Qt::Key_W, Qt::ControlModifier);
  ASSERT_TRUE(waitFor([&] { return !window().isVisible(); }));
  EXPECT_EQ(model->monitoringCoordinator().surfaces(), MonitoringSurfaces());
  screens->raise();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
  EXPECT_EQ(model->monitoringCoordinator().surfaces(),
            (MonitoringSurfaces{MonitoringSurface::mainWindow, MonitoringSurface::overview}));
}

}  // namespace
}  // namespace lumenary
