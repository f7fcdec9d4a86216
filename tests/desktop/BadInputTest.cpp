#include <sys/eventfd.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>

#include "desktop/DesktopHome.h"

// What may lie on a disk, and what may happen to it while it is shown.

namespace lumenary {
namespace {

using enum QAccessible::Role;

using BadInput = DesktopHome;

/// The test says when a mount came or went.
class TouchedMounts final : public MountWatcher {
 public:
  void operator()() const {
    const std::uint64_t one = 1;
    ASSERT_EQ(::write(events_.number(), &one, sizeof one), ssize_t{sizeof one});
  }
  const Descriptor& events() const override { return events_; }
  bool read() override {
    std::uint64_t count = 0;
    return ::read(events_.number(), &count, sizeof count) > 0;
  }

 private:
  Descriptor events_{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
};

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

TEST_F(BadInput, OfTwoNamesThatLookAlikeTheChosenOneIsMoved) {
  // The last of each pair is the larger one, and comes first.
  for (const auto& [first, second] : {std::pair<std::string, std::string>{"same\x01.raw", "same\x02.raw"},
                                      {"same\xe8.raw", "same\xe9.raw"},
                                      {"same\x80.raw", "same\xee\xbe\x80.raw"}}) {
    home.home.build({{"Documents/" + first, 2 * mebibyte}, {"Documents/" + second, 3 * mebibyte}});
    if (!model) {
      open();
    }
    screens->lookAt(at("Documents"));
    ASSERT_TRUE(waitFor([&] { return has(PushButton, "Scan Again"); }));
    click(PushButton, "Scan Again");
    click(ListItem, "same");
    ASSERT_TRUE(waitFor([&] { return has(StaticText, "3.1 MB ·"); })) << shownText();
    click(PushButton, "Move to Trash");
    click(PushButton, "Move to Trash");
    ASSERT_TRUE(waitFor([&] { return trashed().size() == 1; }));
    EXPECT_EQ(trashed(), std::set<std::string>{second});
    EXPECT_EQ(namesIn(at("Documents")), std::set<std::string>{first});
    home.home.remove("Documents/" + first);
    std::filesystem::remove_all(home.home.trash(""));
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

TEST_F(BadInput, AFolderThatGoesWhileItIsReadIsSaid) {
  home.home.build({{"gone/inner/x", 10}, {"gone/other/y", 10}, {"stays/"}});
  std::atomic<bool> goes = true;
  home.beforeRead = [&](std::string_view name) -> std::optional<SystemError> {
    if ((name == "inner" || name == "other") && goes.exchange(false)) {
      std::filesystem::remove_all(at("gone"));
    }
    return std::nullopt;
  };
  open();
  screens->lookAt(at("gone"));
  ASSERT_TRUE(waitFor([&] { return !goes && !*model->isScanning; }));
  ASSERT_TRUE(waitFor([&] { return shownText().contains("2 folders could not be read"); })) << shownText();
  click(PushButton, "Scan Again");
  ASSERT_TRUE(waitFor([&] { return model->scanError->has_value(); }));
  ASSERT_TRUE(waitFor([&] { return has(StaticText, QString::fromStdString(**model->scanError)); })) << shownText();
  screens->lookAt(at("stays"));
  ASSERT_TRUE(waitFor([&] { return has(StaticText, "This folder is empty"); })) << shownText();
}

TEST_F(BadInput, ADriveThatIsPulledOutMakesWayForTheStartupDisk) {
  home.home.build({{"drive/photos/large.raw", 9 * mebibyte}, {"Documents/film.mkv", 3 * mebibyte}});
  const TouchedMounts& touch = put<TouchedMounts>(home.platform.mountWatcher);
  // The startup disk has a scan of the made home: nothing of the real one is read.
  auto stored = StorageScanner(home.real, home.mounts, home.platform.places, home.platform.now, 1).scan(at("")).value();
  stored.root = AppModel::macVolumeRoot;
  ASSERT_TRUE(home.store->save(stored));
  home.mounts.all.push_back({.id = 2, .point = at("drive"), .type = "ext4", .device = "8:2", .source = "/dev/sdb1"});
  open();
  key(Qt::Key_2, Qt::ControlModifier);
  click(ButtonMenu, "Drive: This computer");
  click(MenuItem, "drive");
  click(ListItem, "photos");
  key(Qt::Key_Return);
  click(ListItem, "large.raw");
  waitForControl(PushButton, "Move to Trash");
  click(PushButton, "Move to Trash");
  waitForSheet("Move “large.raw” to the Trash?");

  home.mounts.all.pop_back();
  home.home.remove("drive");
  touch();
  ASSERT_TRUE(waitFor([&] { return model->selectedDrive->path == "/"; }));
  click(PushButton, "Move to Trash");  // what was asked about is gone, and nothing else goes
  ASSERT_TRUE(waitFor([&] { return has(AlertMessage, "The file is no longer at this location."); })) << shownText();
  waitForControl(ButtonMenu, "Drive: This computer");
  EXPECT_FALSE(has(ListItem, "large.raw"));
  EXPECT_TRUE(stands("Documents/film.mkv") && trashed().empty());
  click(ButtonMenu, "Drive: ");
  EXPECT_FALSE(has(MenuItem, "drive"));
  key(Qt::Key_Escape);
  expectFocusInSight("without the drive");
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
  for (int file = 0; file < 20000; ++file) {
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
