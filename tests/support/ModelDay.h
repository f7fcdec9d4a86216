#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "cleanup/command/CleanupCommand.h"
#include "platform/linux/LinuxFolderWatcher.h"
#include "support/FakePlatform.h"
#include "support/ModelHome.h"

namespace lumenary {

/// A whole day of a person on a made home, with the real engine on real threads, and a clock that is turned. Each step
/// checks what a person would look for.
class ModelDay {
 public:
  ModelDay() {
    home.platform.supportWatcher = std::make_unique<LinuxFolderWatcher>();
    home.platform.terminal = std::make_unique<FakeTerminal>();
    home.platform.interruption = std::make_unique<FakeInterruption>();
    home.home.build({{"Documents/film.mkv", 30 * mebibyte},
                     {"Documents/copy of film.mkv", 30 * mebibyte},
                     {"Downloads/letter.txt", 10},
                     {".cache/pip/http/x", 60 * mebibyte},
                     {".var/app/org.example.Maps/cache/tiles", 4 * mebibyte},
                     {"code/app/package.json", 10},
                     {"code/app/node_modules/a/index.js", 51 * mebibyte},
                     {"code/site/package.json", 10},
                     {"code/site/dist/x.js", 52 * mebibyte},
                     {"drive/photos/a.raw", 9 * mebibyte}});
    home.registry.list.push_back(
        {.path = "/flatpak/maps", .id = "org.example.Maps", .name = "Maps", .origin = AppOrigin::flatpak});
    home.platform.places.driveFolders = {home.home.root()};
  }

  void play() {
    startWithNothing();
    scan();
    clearAndTakeBack();
    runTheCommand();
    removeAnApp();
    unplugADrive();
    stopAndStartAgain();
    clearByItself();
    emptyTheTrash();
  }

  Executor::Duration longestHold() const { return home.owner.longestHold(); }

 private:
  static constexpr int mebibyte = 1'048'576;

  AppModel& model() { return *home.model; }
  bool stands(const std::string& relative) const { return standsAt(home.at(relative)); }

  void startWithNothing() {
    home.makeModel();
    model().monitoringCoordinator().set(MonitoringSurface::mainWindow, true);
    model().monitoringCoordinator().set(MonitoringSurface::overview, true);
    model().monitoringCoordinator().start();
    model().restoreCodeFolder();
    home.settle();
    EXPECT_EQ(*model().storageResult, nullptr);
    EXPECT_EQ(model().systemHistory->size(), 1U);
    home.advance(std::chrono::minutes(1), std::chrono::seconds(2));
  }

  void scan() {
    home.scanHome();
    ASSERT_TRUE(*model().storageResult && *model().tidyPlan);
    EXPECT_EQ(model().duplicates->size(), 1U);
    EXPECT_TRUE(*model().closetModel && *model().wardrobeSnapshot);
    EXPECT_EQ(model().cleanupCandidates->size(), 1U);
  }

  void clearAndTakeBack() {
    const std::int64_t before = (*model().storageResult)->totalBytes;
    EXPECT_EQ(home.await(model().clear(true, {}, {}, *model().cleanupCandidates)), 0U);
    EXPECT_FALSE(stands(".cache/pip") || stands("code/app/node_modules"));
    EXPECT_TRUE(stands("Documents/film.mkv") != stands("Documents/copy of film.mkv")) << "one of two copies stays";
    EXPECT_LT((*model().storageResult)->totalBytes, before);
    ASSERT_EQ(model().cleanupTransactions->size(), 1U);
    home.advance(std::chrono::seconds(10));
    model().undoManager().undo();
    home.settle();
    EXPECT_TRUE(stands(".cache/pip") && stands("code/app/node_modules") && stands("Documents/film.mkv") &&
                stands("Documents/copy of film.mkv"));
    model().undoManager().redo();
    home.settle();
    EXPECT_FALSE(stands(".cache/pip") || stands("code/app/node_modules"));
    model().undoManager().undo();
    home.settle();
    home.scanHome();
    EXPECT_GE((*model().storageResult)->totalBytes, before);
  }

  void runTheCommand() {
    const std::size_t before = model().cleanupTransactions->size();
    for (const char* const path : {"dist", "package.json", ""}) {
      std::filesystem::last_write_time(home.at(std::string("code/site/") + path),
                                       std::filesystem::file_time_type::clock::now() - std::chrono::hours(1000));
    }
    const std::vector<std::string> arguments = {"--root", home.at("code"), "--days", "30", "--trash"};
    EXPECT_EQ(CleanupCommand::run(arguments, home.platform), 0);
    EXPECT_FALSE(stands("code/site/dist"));
    home.owner.pollWatched();
    home.advance(std::chrono::seconds(1));
    ASSERT_EQ(model().cleanupTransactions->size(), before + 1) << "its record is seen without a restart";
    EXPECT_EQ(home.await(model().undoTrash(model().cleanupTransactions->back().id)), std::nullopt);
    EXPECT_TRUE(stands("code/site/dist"));
  }

  void removeAnApp() {
    home.registry.list.clear();
    home.owner.signal(home.folderWatcher.events());
    home.advance(std::chrono::seconds(5));
    ASSERT_TRUE(*model().removedAppsNotice);
    EXPECT_EQ(home.desktop.notes.size(), 1U);
    EXPECT_EQ(home.await(model().clear(false, {}, (*model().appInventory)->leftovers, {})), 0U);
    EXPECT_FALSE(stands(".var/app/org.example.Maps"));
  }

  void unplugADrive() {
    const Mount drive{.id = 2, .point = home.at("drive"), .type = "ext4", .device = "8:2", .source = "/dev/sdb1"};
    const auto change = [&](bool isThere) {
      home.mounts.all.resize(1);
      if (isThere) {
        home.mounts.all.push_back(drive);
      }
      home.owner.signal(home.mountWatcher.events());
      home.advance(std::chrono::seconds(1));
    };
    change(true);
    ASSERT_EQ(model().drives->size(), 2U);
    model().selectDrive({.path = home.at("drive"), .isFolder = true});
    home.settle();
    ASSERT_TRUE(*model().storageResult);
    EXPECT_EQ((*model().storageResult)->entries.size(), 1U);
    storeStartupScan();
    change(false);
    EXPECT_EQ(model().selectedDrive->path, "/");
    EXPECT_EQ((*model().storageResult)->root.path, "/") << "its stored scan is shown";
    change(true);
    model().selectDrive({.path = home.at("drive"), .isFolder = true});
    home.settle();
    EXPECT_EQ((*model().storageResult)->root.path, home.at("drive")) << "nothing of it was forgotten";
    change(false);
  }

  /// As if the startup disk held the made home and nothing else.
  void storeStartupScan() {
    auto found = StorageScanner(home.real, home.mounts, home.platform.places, home.platform.now, 2)
                     .scan(home.home.root())
                     .value();
    found.root = AppModel::macVolumeRoot;
    ASSERT_TRUE(home.store->save(found));
  }

  void stopAndStartAgain() {
    const std::size_t acts = model().cleanupTransactions->size();
    model().refreshTrashSize();  // it ends after the model is gone
    home.model.reset();
    home.settle();
    storeStartupScan();
    home.makeModel();
    home.settle();
    EXPECT_EQ(model().cleanupTransactions->size(), acts);
    ASSERT_TRUE(*model().storageResult);
    EXPECT_TRUE(*model().tidyPlan);
  }

  void clearByItself() {
    ASSERT_TRUE(home.platform.defaults->setString("autoTidy", "weekly"));
    model().monitoringCoordinator().start();
    home.settle();
    EXPECT_FALSE(stands(".cache/pip"));
    ASSERT_EQ(model().tidyLog->back().automatic, true);
    EXPECT_TRUE(stands("code/app/node_modules")) << "never build files";
  }

  void emptyTheTrash() {
    EXPECT_EQ(home.await(model().emptyTrash()).kind, TrashEmptyResult::Kind::emptied);
    EXPECT_GE(model().confirmedReclaimedBytes(), 60 * mebibyte);
    EXPECT_EQ(*model().trashBytes, 0);
    EXPECT_TRUE(stands("Documents/film.mkv") || stands("Documents/copy of film.mkv"));
    home.model.reset();
    home.settle();
  }

 public:
  ModelHome home{ModelHome::Threads::real};
};

}  // namespace lumenary
