#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

#include "apps/BackgroundItemsController.h"
#include "cleanup/CleanupJournal.h"
#include "cleanup/CleanupRecovery.h"
#include "platform/linux/LinuxFileReader.h"
#include "support/FakeFiles.h"
#include "support/FakeTools.h"
#include "support/FakeTrash.h"
#include "support/TemporaryHome.h"

namespace lumenary {
namespace {

struct BackgroundItemsControllerTest : testing::Test {
  BackgroundItem item(BackgroundItem::Domain domain) const {
    return {.url = {.path = path}, .label = "com.example.agent", .domain = domain};
  }
  bool isLogWritten() const { return files.contents.contains("/support/cleanup-transactions.json"); }
  std::size_t journals() const {
    return static_cast<std::size_t>(std::ranges::count_if(
        files.contents, [](const auto& each) { return each.first.ends_with(CleanupJournal::fileExtension); }));
  }

  TemporaryHome home;
  std::string path = home.path("agent.plist");
  FakeTools tools;
  FakeFiles files;
  FakeTrash trash;
  LinuxFileReader reader;
  BackgroundItemRemoval removal{reader, files, trash, "/support"};
  BackgroundItemsController controller{tools, removal, 501};

  void SetUp() override {
    home.write("agent.plist");
    trash.standing = {path};
    files.folders = {"/support"};
  }
};

TEST_F(BackgroundItemsControllerTest, SwitchesAndRemovesOnlyWhatIsThePersonsOwn) {
  for (const auto domain : {BackgroundItem::Domain::allUsers, BackgroundItem::Domain::system}) {
    controller.setEnabled(item(domain), true);
    controller.setEnabled(item(domain), false);
    EXPECT_TRUE(controller.remove(item(domain)).has_value());
  }
  EXPECT_TRUE(tools.calls.empty() && trash.calls.empty());

  controller.setEnabled(item(BackgroundItem::Domain::user), true);
  controller.setEnabled(item(BackgroundItem::Domain::user), false);
  EXPECT_EQ(tools.calls,
            (std::vector<std::string>{
                "/bin/launchctl enable gui/501/com.example.agent", "/bin/launchctl bootstrap gui/501 " + path,
                "/bin/launchctl bootout gui/501 " + path, "/bin/launchctl disable gui/501/com.example.agent"}));
}

TEST_F(BackgroundItemsControllerTest, RemovingStopsTheItemAndMovesItsFile) {
  EXPECT_TRUE(controller.remove(item(BackgroundItem::Domain::user)).has_value());
  EXPECT_EQ(tools.calls, (std::vector<std::string>{"/bin/launchctl bootout gui/501 " + path}));
  EXPECT_EQ(trash.standing, std::set{FakeTrash::placeOf("agent.plist")});
  EXPECT_EQ(journals(), 0U);
  EXPECT_FALSE(isLogWritten());
}

TEST_F(BackgroundItemsControllerTest, WhatMayNotMoveIsNotStopped) {
  trash.checkFailures[path] = {.refusal = TrashRefusal::unchangeable};
  const auto removed = controller.remove(item(BackgroundItem::Domain::user));
  ASSERT_FALSE(removed.has_value());
  EXPECT_EQ(description(removed.error()), "It is marked as unchangeable, so it stays where it is.");
  EXPECT_TRUE(tools.calls.empty());

  home.remove("agent.plist");
  EXPECT_FALSE(controller.remove(item(BackgroundItem::Domain::user)).has_value());
  EXPECT_TRUE(tools.calls.empty());
}

TEST_F(BackgroundItemsControllerTest, ARefusedMoveIsTold) {
  trash.failures[path] = {.refusal = TrashRefusal::changed};
  const auto removed = controller.remove(item(BackgroundItem::Domain::user));
  ASSERT_FALSE(removed.has_value());
  EXPECT_EQ(description(removed.error()), TrashError{.refusal = TrashRefusal::changed}.description());
}

/// The process dies before each call that writes or moves, one after the other.
TEST_F(BackgroundItemsControllerTest, KilledAnywhereTheFileStandsInOnePlaceAndTheNextStartSettlesIt) {
  struct Killed : std::runtime_error {
    Killed() : runtime_error("killed") {}
  };
  bool isDone = false;
  for (int survived = 0; !isDone; ++survived) {
    ASSERT_LT(survived, 50);
    trash = {};
    trash.standing = {path};
    files.contents.clear();
    int left = survived;
    const auto step = [&left] {
      if (left-- == 0) {
        throw Killed();
      }
    };
    files.beforeCall = step;
    trash.aroundMove = step;
    try {
      isDone = controller.remove(item(BackgroundItem::Domain::user)).has_value();
    } catch (const Killed&) {
      isDone = false;
    }
    files.beforeCall = [] {};
    files.folders.insert("/support/cleanup-journals");
    const bool wasMoved = trash.standing.contains(FakeTrash::placeOf("agent.plist"));
    EXPECT_NE(wasMoved, trash.standing.contains(path)) << survived;
    ScanStore store(files, "/support");
    recoverInterruptedActs(files, store, trash);
    EXPECT_EQ(journals(), 0U) << survived;
    EXPECT_FALSE(isLogWritten()) << survived;
  }
}

}  // namespace
}  // namespace lumenary
