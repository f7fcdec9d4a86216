#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include <filesystem>

#include "platform/linux/TrashInfo.h"
#include "support/LinuxTrashTest.h"

namespace lumenary {
namespace {

namespace fs = std::filesystem;

/// A file system of its own, mounted below a temporary home; skipped where this process may not mount.
class SecondVolumeTest : public LinuxTrashTest {
 protected:
  void SetUp() override {
    home.makeFolder("volume");
    volume = home.path("volume");
    if (::mount("none", volume.c_str(), "tmpfs", 0, "size=1m") != 0) {
      volume.clear();
      GTEST_SKIP() << "mounting a second file system is not allowed here";
    }
    home.write("volume/app/dist/a.js", "a");
  }
  void TearDown() override {
    if (!volume.empty()) {
      ::umount2(volume.c_str(), MNT_DETACH);
    }
  }
  std::string ownTrash() const { return volume + "/.Trash-" + std::to_string(places.userID); }
  std::string sharedTrash() const { return volume + "/.Trash/" + std::to_string(places.userID); }

  std::string volume;
};

TEST_F(SecondVolumeTest, UsesTheTrashOfTheVolumeAndComesBack) {
  const auto moved = move(volume + "/app/dist");
  ASSERT_TRUE(moved.has_value());
  EXPECT_EQ(moved->trashPath, ownTrash() + "/files/dist");
  EXPECT_EQ(fs::status(ownTrash()).permissions(), fs::perms::owner_all);
  EXPECT_EQ(parseTrashInfo(contentsOf(ownTrash() + "/info/dist.trashinfo"))->path, "app/dist");
  EXPECT_FALSE(standsAt(home.trash("files/dist")));
  ASSERT_TRUE(putBack(moved->trashPath, volume + "/app/dist").has_value());
  EXPECT_EQ(contentsOf(volume + "/app/dist/a.js"), "a");
}

TEST_F(SecondVolumeTest, AnAbsoluteOriginInAVolumesTrashIsRefused) {
  const std::string inTrash = move(volume + "/app/dist")->trashPath;
  std::ofstream(ownTrash() + "/info/dist.trashinfo")
      << composeTrashInfo(volume + "/app/dist", recorder.intents[0].date);
  EXPECT_EQ(refusal(putBack(inTrash, volume + "/app/dist")), TrashRefusal::notInTrash);
}

TEST_F(SecondVolumeTest, TheSharedTrashCountsOnlyAsARealFolderWithTheStickyBit) {
  home.makeFolder("volume/.Trash");
  ASSERT_EQ(move(volume + "/app/dist")->trashPath, ownTrash() + "/files/dist") << "no sticky bit";
  ::chmod((volume + "/.Trash").c_str(), 01777);
  home.write("volume/app/dist/a.js");
  ASSERT_EQ(move(volume + "/app/dist")->trashPath, sharedTrash() + "/files/dist");
  fs::rename(volume + "/.Trash", volume + "/elsewhere");
  fs::create_directory_symlink(volume + "/elsewhere", volume + "/.Trash");
  home.write("volume/app/dist/a.js");
  ASSERT_EQ(move(volume + "/app/dist")->trashPath, ownTrash() + "/files/dist.2") << "a link";
}

TEST_F(SecondVolumeTest, ATrashThatIsALinkOrReadOnlyIsNotUsed) {
  home.makeFolder("volume/elsewhere");
  fs::create_directory_symlink(volume + "/elsewhere", ownTrash());
  EXPECT_EQ(refusal(move(volume + "/app/dist")), TrashRefusal::noTrash);
  fs::remove(ownTrash());
  ASSERT_EQ(::mount("none", volume.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
  EXPECT_EQ(refusal(move(volume + "/app/dist")), TrashRefusal::readOnlyVolume);
  EXPECT_TRUE(standsAt(volume + "/app/dist/a.js"));
}

TEST_F(SecondVolumeTest, MountPointsAndWhatHoldsThemStay) {
  home.makeFolder("volume/app/build/inner");
  ASSERT_EQ(::mount("none", (volume + "/app/build/inner").c_str(), "tmpfs", 0, "size=1m"), 0);
  for (const char* path : {"/app/build", "/app/build/inner", "/app", ""}) {
    EXPECT_EQ(refusal(move(volume + path)), TrashRefusal::mountInside) << path;
  }
  ::umount2((volume + "/app/build/inner").c_str(), MNT_DETACH);
  EXPECT_TRUE(move(volume + "/app/build").has_value());
}

TEST_F(SecondVolumeTest, ABindMountHasATrashOfItsOwnAndNothingIsCopied) {
  home.write("Code/app/dist/a.js");
  home.makeFolder("bound");
  ASSERT_EQ(::mount(home.path("Code").c_str(), home.path("bound").c_str(), nullptr, MS_BIND, nullptr), 0);
  const auto moved = move(home.path("bound/app/dist"));
  ::umount2(home.path("bound").c_str(), MNT_DETACH);
  ASSERT_TRUE(moved.has_value());
  EXPECT_EQ(moved->trashPath, home.path("bound/.Trash-" + std::to_string(places.userID) + "/files/dist"));
}

TEST_F(SecondVolumeTest, AGuardedTreeStaysGuardedThroughABindMount) {
  home.write(".ssh/app/dist/key");
  home.makeFolder("bound");
  ASSERT_EQ(::mount(home.path(".ssh").c_str(), home.path("bound").c_str(), nullptr, MS_BIND, nullptr), 0);
  EXPECT_EQ(refusal(move(home.path("bound/app/dist"))), TrashRefusal::guarded);
  ::umount2(home.path("bound").c_str(), MNT_DETACH);
  EXPECT_TRUE(standsAt(home.path(".ssh/app/dist/key")));
}

TEST_F(SecondVolumeTest, AHomeTrashOnAnotherVolumeIsReachedThroughItsLink) {
  home.makeFolder("volume/trash");
  home.makeFolder(".local/share");
  fs::create_directory_symlink(volume + "/trash", home.path(".local/share/Trash"));
  const auto moved = move(volume + "/app/dist");
  ASSERT_TRUE(moved.has_value());
  EXPECT_TRUE(standsAt(volume + "/trash/files/dist/a.js"));
}

}  // namespace
}  // namespace lumenary
