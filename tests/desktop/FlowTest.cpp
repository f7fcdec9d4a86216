#include "desktop/DesktopHome.h"

// A person's way through the window: scan, find, move, take back, clear, take back, empty, quit.

namespace lumenary {
namespace {

using enum QAccessible::Role;

class Flow : public DesktopHome {
 protected:
  void SetUp() override {
    DesktopHome::SetUp();
    home.home.build({{"Documents/film.mkv", 30 * mebibyte},
                     {"Documents/letter.txt", 3 * mebibyte},
                     {".cache/pip/http/x", 60 * mebibyte},
                     {".gradle/caches/x", 70 * mebibyte}});
    film = contentsOf(at("Documents/film.mkv"));
  }
  std::int64_t measured() { return (*model->storageResult)->totalBytes; }
  bool isShown(const QString& words) { return has(StaticText, words); }

  std::string film;
};

TEST_F(Flow, ByMouse) {
  openHome();
  const AppModel::Scan first = *model->storageResult;
  click(PushButton, "Scan Again");
  ASSERT_TRUE(waitFor([&] { return !*model->isScanning && *model->storageResult != first; }));

  click(EditableText, "Search the scan");
  type("film");
  click(ListItem, "film.mkv, ");
  const AppModel::Scan second = *model->storageResult;
  click(PushButton, "Scan Again");
  ASSERT_TRUE(waitFor([&] { return !*model->isScanning && *model->storageResult != second; }));
  waitForControl(PushButton, "Move to Trash");
  ASSERT_FALSE(has(ListItem, "letter.txt") || has(ListItem, "Documents,")) << "what was found stays, also meanwhile";
  const std::int64_t before = measured();
  click(PushButton, "Move to Trash");
  waitForSheet("Move “film.mkv” to the Trash?");
  EXPECT_TRUE(stands("Documents/film.mkv")) << "asked first";
  click(PushButton, "Move to Trash");
  ASSERT_TRUE(waitFor([&] { return !stands("Documents/film.mkv") && measured() < before; }));
  EXPECT_EQ(trashed(), std::set<std::string>{"film.mkv"});
  click(PushButton, "Undo");
  ASSERT_TRUE(waitFor([&] { return stands("Documents/film.mkv"); }));
  EXPECT_EQ(contentsOf(at("Documents/film.mkv")), film);

  click(PageTab, "Clean");
  click(CheckBox, "Gradle cache");
  click(PushButton, "Move 62.9 MB to Trash");
  ASSERT_TRUE(waitFor([&] { return !stands(".cache/pip"); }));
  EXPECT_TRUE(stands(".gradle/caches/x")) << "it was unticked";
  click(PushButton, "Undo");
  ASSERT_TRUE(waitFor([&] { return stands(".cache/pip/http/x"); }));

  click(RadioButton, "History");
  click(ListItem, "pip, 1 item put back");
  ASSERT_TRUE(waitFor([&] { return has(ListItem, "pip, 62.9 MB, Put back"); })) << shownText();
  key(Qt::Key_Y, Qt::ControlModifier);
  ASSERT_TRUE(waitFor([&] { return !stands(".cache/pip"); })) << "done again";
  click(PushButton, "Empty Trash…");
  waitForSheet("Empty the Trash?");
  click(PushButton, "Cancel");
  EXPECT_EQ(trashed(), std::set<std::string>{"pip"});
  click(PushButton, "Empty Trash…");
  click(PushButton, "Empty Trash");
  ASSERT_TRUE(waitFor([&] { return trashed().empty(); }));
  ASSERT_TRUE(waitFor([&] { return isShown("The Trash is empty."); })) << shownText();

  EXPECT_TRUE(waitFor([&] { return !has(PushButton, "Undo"); })) << "nothing is left to take back";

  QTimer::singleShot(0, [this] { key(Qt::Key_Q, Qt::ControlModifier); });
  QTimer::singleShot(patience, [] { QGuiApplication::exit(1); });
  EXPECT_EQ(QGuiApplication::exec(), 0);
}

TEST_F(Flow, OneOfferIsTakenBackOnce) {
  openHome();
  for (const char* const name : {"film", "letter"}) {
    key(Qt::Key_K, Qt::ControlModifier);
    type(name);
    click(ListItem, name);
    click(PushButton, "Move to Trash");
    waitForSheet("Move “");
    click(PushButton, "Move to Trash");
    ASSERT_TRUE(
        waitFor([&] { return trashed().size() == (name[0] == 'f' ? 1U : 2U) && model->lastTrash->has_value(); }));
  }
  waitForControl(PushButton, "Undo");
  const QPoint undo = window().mapFromGlobal(find(PushButton, "Undo").place().center());
  for (int press = 0; press < 2; ++press) {
    QTest::mouseClick(&window(), Qt::LeftButton, {}, undo);
  }
  ASSERT_TRUE(waitFor([&] { return stands("Documents/letter.txt") && !model->lastTrash->has_value(); }));
  EXPECT_EQ(trashed(), std::set<std::string>{"film.mkv"});
}

TEST_F(Flow, WhatWasTickedAfterALookIsForgottenWithItsPlan) {
  home.home.build({{"Documents/copy of film.mkv", 30 * mebibyte}});
  openHome();
  key(Qt::Key_3, Qt::ControlModifier);
  click(CheckBox, "Duplicate copies");
  waitForControl(PushButton, "Move 167.8 MB to Trash");
  screens->lookAt(at("Documents"));
  screens->lookAt(home.home.root());
  key(Qt::Key_3, Qt::ControlModifier);
  waitForControl(PushButton, "Move 136.3 MB to Trash");
  EXPECT_FALSE(find(CheckBox, "Duplicate copies").state().checked);
}

TEST_F(Flow, ByKeyboardAlone) {
  openHome();
  const auto expectOneFocus = [this](const char* step) {
    QQuickItem* const item = window().activeFocusItem();
    ASSERT_NE(item, nullptr) << step;
    EXPECT_TRUE(item->isVisible() && item->isEnabled()) << step;
    EXPECT_FALSE(focused().isEmpty()) << step;
  };
  key(Qt::Key_2, Qt::ControlModifier);
  expectOneFocus("the room");
  key(Qt::Key_K, Qt::ControlModifier);
  EXPECT_EQ(focused().toStdString(), "Search the scan");
  type("film");
  ASSERT_TRUE(waitFor([&] { return has(ListItem, "film.mkv") && !has(ListItem, "Documents,"); })) << shownText();
  key(Qt::Key_Down);
  waitForControl(PushButton, "Move to Trash");
  expectOneFocus("the list");
  key(Qt::Key_Delete);
  waitForSheet("Move “film.mkv” to the Trash?");
  EXPECT_EQ(focused().toStdString(), "Cancel") << "yes is a step away";
  key(Qt::Key_Escape);
  EXPECT_TRUE(stands("Documents/film.mkv"));
  expectOneFocus("back from the question");
  key(Qt::Key_Delete);
  key(Qt::Key_Tab);
  key(Qt::Key_Return);
  ASSERT_TRUE(waitFor([&] { return !stands("Documents/film.mkv"); }));
  ASSERT_TRUE(waitFor([&] { return model->lastTrash->has_value(); }));
  expectOneFocus("after the move");
  key(Qt::Key_Z, Qt::ControlModifier);
  ASSERT_TRUE(waitFor([&] { return stands("Documents/film.mkv"); }));

  key(Qt::Key_3, Qt::ControlModifier);
  waitForControl(CheckBox, "Gradle cache");
  tabTo("Gradle cache");
  key(Qt::Key_Return);
  EXPECT_TRUE(waitFor([&] { return has(ListItem, "caches, 73.4 MB"); })) << "what is behind it\n" << shownText();
  key(Qt::Key_Space);
  tabTo("Move 62.9 MB to Trash");
  key(Qt::Key_Return);
  ASSERT_TRUE(waitFor([&] { return !stands(".cache/pip") && model->lastTrash->has_value(); }));
  EXPECT_TRUE(stands(".gradle/caches/x"));
  key(Qt::Key_Tab);
  expectOneFocus("after the clear");
  key(Qt::Key_Z, Qt::ControlModifier);
  ASSERT_TRUE(waitFor([&] { return stands(".cache/pip/http/x"); }));
  EXPECT_TRUE(trashed().empty());
}

}  // namespace
}  // namespace lumenary
