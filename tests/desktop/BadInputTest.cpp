#include <filesystem>

#include "desktop/DesktopHome.h"

// What may lie on a disk, and what may happen to it while it is shown.

namespace lumenary {
namespace {

using enum QAccessible::Role;

using BadInput = DesktopHome;

TEST_F(BadInput, AFileOfAnyNameIsFoundShownAndMoved) {
  const std::vector<std::pair<const char*, std::string>> names = {
      {"line", "line\nbreak\x1b[31m.raw"},
      {"latin", "latin \xe9\xff.raw"},
      {"markup", "markup <b>bold</b> &amp; <img src=x>.raw"},
      {"hebrew", "hebrew \u05e9\u05dc\u05d5\u05dd\u202e gnp.raw"},
      {"long", "long" + std::string(247, 'x') + ".raw"},
      {"quote", "quote \"'\\ %41 file:.raw"},
  };
  for (const auto& [token, name] : names) {
    home.home.build({{"Documents/" + name, 2 * mebibyte}});
  }
  openHome();
  for (const auto& [token, name] : names) {
    key(Qt::Key_K, Qt::ControlModifier);
    type(token);
    click(ListItem, token);
    ASSERT_TRUE(waitFor([&] { return has(StaticText, "Look first"); })) << token << "\n" << shownText();
    click(PushButton, "Move to Trash");
    waitForSheet("Move “");
    click(PushButton, "Move to Trash");
    ASSERT_TRUE(waitFor([&, file = name] { return !stands("Documents/" + file); })) << token;
    ASSERT_TRUE(waitFor([&] { return model->lastTrash->has_value(); })) << token;
    EXPECT_EQ(namesIn(at("Documents")).size(), names.size() - 1) << token;
    click(PushButton, "Undo");
    ASSERT_TRUE(waitFor([&, file = name] { return stands("Documents/" + file); })) << token;
  }
}

TEST_F(BadInput, AnEmptyFolderAndOneThatIsGoneAreSaidInASentence) {
  home.home.build({{"empty/"}});
  open();
  screens->lookAt(at("empty"));
  ASSERT_TRUE(waitFor([&] { return has(StaticText, "This folder is empty"); })) << shownText();
  std::filesystem::remove(at("empty"));
  click(PushButton, "Scan Again");
  ASSERT_TRUE(waitFor([&] { return model->scanError->has_value(); }));
  ASSERT_TRUE(waitFor([&] { return has(StaticText, QString::fromStdString(**model->scanError)); })) << shownText();
}

TEST_F(BadInput, WhatGoesWhileItIsChosenIsSaid) {
  home.home.build({{"Documents/film.mkv", 30 * mebibyte}, {"Documents/other.mkv", 20 * mebibyte}});
  openHome();
  key(Qt::Key_K, Qt::ControlModifier);
  type("film");
  click(ListItem, "film.mkv");
  waitForControl(PushButton, "Move to Trash");
  std::filesystem::rename(at("Documents/film.mkv"), at("Documents/moved.mkv"));
  click(PushButton, "Move to Trash");
  waitForSheet("Move “film.mkv”");
  click(PushButton, "Move to Trash");
  ASSERT_TRUE(waitFor([&] { return model->actionNotice->has_value(); }));
  ASSERT_TRUE(waitFor([&] { return has(AlertMessage, QString::fromStdString(**model->actionNotice)); })) << shownText();
  EXPECT_TRUE(stands("Documents/moved.mkv") && stands("Documents/other.mkv") && trashed().empty());
}

TEST_F(BadInput, AFolderOfThousandsIsShownAndLeft) {
  for (int file = 0; file < 3000; ++file) {
    home.home.write("many/file " + std::to_string(file));
  }
  home.home.build({{"many/large.raw", 5 * mebibyte}});
  openHome();
  click(ListItem, "many, ");
  key(Qt::Key_Return);
  ASSERT_TRUE(waitFor([&] { return has(ListItem, "large.raw"); })) << shownText();
  key(Qt::Key_End);
  key(Qt::Key_Backspace);
  ASSERT_TRUE(waitFor([&] { return has(ListItem, "many, "); })) << shownText();
}

}  // namespace
}  // namespace lumenary
