#include <filesystem>
#include <functional>
#include <map>

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
    before = contents();
  }
  /// Each file of the home but the program's own and the Trash, with what it holds.
  std::map<std::string, std::size_t> contents() const {
    std::map<std::string, std::size_t> files;
    for (const auto& item : std::filesystem::recursive_directory_iterator(at(""))) {
      if (item.is_regular_file() && !item.path().string().starts_with(at(".local")) &&
          !item.path().string().starts_with(at(".config"))) {
        files.emplace(item.path(), std::hash<std::string>()(contentsOf(item.path())));
      }
    }
    return files;
  }
  std::int64_t measured() { return (*model->storageResult)->totalBytes; }
  bool isShown(const QString& words) { return has(StaticText, words); }

  std::map<std::string, std::size_t> before;
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
  const std::int64_t whole = measured();
  click(PushButton, "Move to Trash");
  waitForSheet("Move “film.mkv” to the Trash?");
  EXPECT_TRUE(stands("Documents/film.mkv")) << "asked first";
  click(PushButton, "Move to Trash");
  ASSERT_TRUE(waitFor([&] { return !stands("Documents/film.mkv") && measured() < whole; }));
  EXPECT_EQ(trashed(), std::set<std::string>{"film.mkv"});
  click(PushButton, "Undo");
  ASSERT_TRUE(waitFor([&] { return stands("Documents/film.mkv"); }));
  EXPECT_EQ(contents(), before);

  click(PageTab, "Clean");
  click(CheckBox, "Gradle cache");
  click(PushButton, "Move 62.9 MB to Trash");
  ASSERT_TRUE(waitFor([&] { return !stands(".cache/pip"); }));
  EXPECT_TRUE(stands(".gradle/caches/x")) << "it was unticked";
  click(PushButton, "Undo");
  ASSERT_TRUE(waitFor([&] { return stands(".cache/pip/http/x"); }));
  EXPECT_EQ(contents(), before);

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

TEST_F(Flow, WhatGoesWhenItIsPressedHandsTheKeyboardOn) {
  openHome();
  const auto pressAndWait = [this](const QString& words, const std::function<bool()>& done) {
    tabTo(words);
    key(Qt::Key_Return);
    ASSERT_TRUE(waitFor(done)) << words.toStdString();
    ASSERT_TRUE(waitFor([&] { return focused() != words; })) << words.toStdString();
    expectFocusInSight("after " + words.toStdString());
  };
  key(Qt::Key_3, Qt::ControlModifier);
  waitForControl(PushButton, "Move 136.3 MB to Trash");
  pressAndWait("Move 136.3 MB to Trash", [&] { return trashed().size() == 2 && model->lastTrash->has_value(); });
  pressAndWait("Undo", [&] { return trashed().empty() && !model->lastTrash->has_value(); });
  key(Qt::Key_Y, Qt::ControlModifier);
  ASSERT_TRUE(waitFor([&] { return trashed().size() == 2 && model->lastTrash->has_value(); }));
  waitForControl(PushButton, "Undo");
  pressAndWait("Close", [&] { return !has(PushButton, "Close"); });
  key(Qt::Key_1, Qt::ControlModifier);
  waitForControl(PushButton, "Put Back pip and 1 more");
  pressAndWait("Put Back pip and 1 more", [&] { return trashed().empty(); });
}

TEST_F(Flow, ByKeyboardAlone) {
  openHome();
  key(Qt::Key_2, Qt::ControlModifier);
  expectFocusInSight("the room");
  key(Qt::Key_K, Qt::ControlModifier);
  EXPECT_EQ(focused().toStdString(), "Search the scan");
  type("film");
  ASSERT_TRUE(waitFor([&] { return has(ListItem, "film.mkv") && !has(ListItem, "Documents,"); })) << shownText();
  key(Qt::Key_Down);
  waitForControl(PushButton, "Move to Trash");
  expectFocusInSight("the list");
  key(Qt::Key_Delete);
  waitForSheet("Move “film.mkv” to the Trash?");
  EXPECT_EQ(focused().toStdString(), "Cancel") << "yes is a step away";
  key(Qt::Key_Escape);
  EXPECT_TRUE(stands("Documents/film.mkv"));
  expectFocusInSight("back from the question");
  key(Qt::Key_Delete);
  key(Qt::Key_Tab);
  key(Qt::Key_Return);
  ASSERT_TRUE(waitFor([&] { return !stands("Documents/film.mkv"); }));
  ASSERT_TRUE(waitFor([&] { return model->lastTrash->has_value(); }));
  expectFocusInSight("after the move");
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
  expectFocusInSight("after the clear");
  key(Qt::Key_Z, Qt::ControlModifier);
  ASSERT_TRUE(waitFor([&] { return stands(".cache/pip/http/x"); }));
  EXPECT_TRUE(trashed().empty());
  EXPECT_EQ(contents(), before);
  expectFocusInSight("taken back");
}

}  // namespace
}  // namespace lumenary
