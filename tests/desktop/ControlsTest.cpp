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
    openHome();
  }

  void expectNames(const std::string& place) {
    static const std::set<QAccessible::Role> pressed = {PushButton, CheckBox,   RadioButton,
                                                        PageTab,    ButtonMenu, MenuItem};
    int controls = 0;
    for (const Control& control : root().all()) {
      const bool isControl = pressed.contains(control.role()) || control.state().focusable;
      controls += isControl ? 1 : 0;
      EXPECT_FALSE(isControl && control.name().trimmed().isEmpty())
          << place << ": a control without a name, role " << control.role();
      EXPECT_FALSE(pressed.contains(control.role()) && !control.canBePressed())
          << place << ": can't be pressed: " << control.name().toStdString();
    }
    EXPECT_GE(controls, 7) << place;
  }

  /// Tab comes to each control once and back to where it began.
  void expectRound(const std::string& place) {
    key(Qt::Key_Tab);
    std::vector<QQuickItem*> round = {window().activeFocusItem()};
    for (key(Qt::Key_Tab); window().activeFocusItem() != round.front() && round.size() < 100; key(Qt::Key_Tab)) {
      QQuickItem* const item = window().activeFocusItem();
      ASSERT_NE(item, nullptr) << place;
      EXPECT_TRUE(item->isVisible() && item->isEnabled()) << place;
      EXPECT_EQ(std::ranges::count(round, item), 0) << place << ": a trap at " << focused().toStdString();
      round.push_back(item);
    }
    EXPECT_GE(round.size(), 7U) << place;
    EXPECT_LT(round.size(), 100U) << place;
  }
};

TEST_F(Controls, OfEveryRoomHaveNamesAndAreReachedByTab) {
  const std::vector<std::pair<Qt::Key, QString>> rooms = {{Qt::Key_1, "Overview"}, {Qt::Key_2, "Storage"},
                                                          {Qt::Key_3, "Clean"},    {Qt::Key_4, "Apps"},
                                                          {Qt::Key_5, "Memory"},   {Qt::Key_6, "Ports & Projects"}};
  for (const auto& [number, title] : rooms) {
    key(number, Qt::ControlModifier);
    ASSERT_TRUE(waitFor([&, room = title] { return find(PageTab, room).state().selected; })) << title.toStdString();
    ASSERT_TRUE(waitFor([&] { return has(Heading, ""); })) << title.toStdString();
    expectNames(title.toStdString());
    expectRound(title.toStdString());
  }
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
