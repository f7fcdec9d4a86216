#include <gtest/gtest.h>

#include <filesystem>

#include "platform/linux/TrashInfo.h"
#include "support/LinuxTrashTest.h"

namespace lumenary {
namespace {

namespace fs = std::filesystem;

using LinuxTrashSettleTest = LinuxTrashTest;

/// The mounts of this process, all of them said to be of one type.
class MountsOfType final : public MountTable {
 public:
  explicit MountsOfType(std::string type) : type_(std::move(type)) {}
  SystemResult<std::vector<Mount>> mounts() const override {
    auto mounts = LinuxMountTable().mounts();
    for (Mount& mount : *mounts) {
      mount.kind = MountKind::local;
      mount.type = type_;
    }
    return mounts;
  }

 private:
  std::string type_;
};

TEST_F(LinuxTrashSettleTest, AnActThatDiedIsToldByWhatStandsWhere) {
  constexpr bool lasting = true;
  const auto infoOf = [&](const std::string& origin, std::chrono::minutes later) {
    return composeTrashInfo(home.path(origin), moved + later);
  };
  const auto now = std::chrono::minutes(0);
  const std::string ours = infoOf("app/dist", now);
  const std::string part = ours.substr(0, ours.size() - 12);
  const std::string none;
  const struct {
    const char* name;
    const char* standing;  ///< o: at the origin, t: in the Trash, capital: another inode number than was intended
    std::string info;      ///< empty: no info file
    bool isLasting;        ///< whether the file system keeps inode numbers
    ActState state;
    bool hasInfo;  ///< afterwards
  } cases[] = {
      {"never moved", "o", ours, lasting, ActState::atOrigin, false},
      {"never moved, its info file begun", "o", part, lasting, ActState::atOrigin, false},
      {"never moved, another's info file", "o", infoOf("other/dist", now), lasting, ActState::atOrigin, true},
      {"never moved, a later act's info file", "o", infoOf("app/dist", std::chrono::minutes(5)), lasting,
       ActState::atOrigin, true},
      {"never moved, another's info file begun", "o", "[Trash Info]\nPath=/els", lasting, ActState::atOrigin, true},
      {"moved", "t", ours, lasting, ActState::inTrash, true},
      {"moved, the info file lost", "t", none, lasting, ActState::inTrash, true},
      {"another of the same number has the name", "t", infoOf("other/dist", now), lasting, ActState::neither, true},
      {"a later act's of the same number", "t", infoOf("app/dist", std::chrono::minutes(5)), lasting, ActState::neither,
       true},
      {"emptied, and built again", "O", none, lasting, ActState::neither, false},
      {"another has the name", "oT", infoOf("other/dist", now), lasting, ActState::atOrigin, true},
      {"never moved, on FAT", "O", ours, !lasting, ActState::atOrigin, false},
      {"moved, on FAT", "T", ours, !lasting, ActState::inTrash, true},
      {"moved and built again, on FAT", "OT", ours, !lasting, ActState::inTrash, true},
      {"another has the name, on FAT", "OT", infoOf("other/dist", now), !lasting, ActState::atOrigin, true},
      {"only another has the name, on FAT", "T", infoOf("app/dist", std::chrono::minutes(5)), !lasting,
       ActState::neither, true},
      {"nothing tells whose it is, on FAT", "T", none, !lasting, ActState::unknown, false},
      {"gone, on FAT", "", none, !lasting, ActState::neither, false},
  };
  for (const auto& [name, standing, info, isLasting, state, hasInfo] : cases) {
    SCOPED_TRACE(name);
    const std::string standingAt = standing;
    home.remove("app");
    home.remove(".local/share/Trash");
    home.build({{"app/"}, {".local/share/Trash/files/"}, {".local/share/Trash/info/"}});
    TrashIntent intent{.originalPath = home.path("app/dist"),
                       .trashPath = home.trash("files/dist"),
                       .identity = {.device = 7, .inode = 1, .kind = FileKind::folder},
                       .date = moved};
    for (const char place : standingAt) {
      const std::string path = place == 'o' || place == 'O' ? intent.originalPath : intent.trashPath;
      fs::create_directory(path);
      if (place == 'o' || place == 't') {
        intent.identity.inode = openItem(reader, path)->identity.inode;
      }
    }
    const std::string infoPath = home.trash("info/dist.trashinfo");
    if (!info.empty()) {
      std::ofstream(infoPath) << info;
      // As old as the date in it, which isn't a question of the time zone here.
      const bool isLater = info.find(infoOf("app/dist", std::chrono::minutes(5))) == 0;
      home.setModified(".local/share/Trash/info/dist.trashinfo", moved + std::chrono::minutes(isLater ? 5 : 0));
    }
    const MountsOfType mounts(isLasting ? "ext4" : "vfat");
    LinuxTrash restarted(kernel, reader, mounts, places);
    EXPECT_EQ(restarted.settle(intent), state);
    EXPECT_EQ(standsAt(infoPath), hasInfo);
    EXPECT_EQ(standsAt(intent.originalPath), standingAt.find_first_of("oO") != std::string::npos);
    EXPECT_EQ(standsAt(intent.trashPath), standingAt.find_first_of("tT") != std::string::npos);
  }
}

TEST_F(LinuxTrashSettleTest, OfATrashBehindALinkToADiskThatIsAwayNothingIsKnown) {
  home.build({{"app/"}, {".local/share/Trash", LinkTo{home.path("away/Trash")}}});
  EXPECT_EQ(trash.settle({.originalPath = home.path("app/dist"),
                          .trashPath = home.trash("files/dist"),
                          .identity = {.device = 7, .inode = 1, .kind = FileKind::folder},
                          .date = moved}),
            ActState::unknown);
}

TEST_F(LinuxTrashSettleTest, AFileThatDiedBetweenItsTwoNamesKeepsTheFirst) {
  for (const std::string& origin : {home.path("Code/file"), home.path("Code/its other name")}) {
    home.build({{"Code/file", Content{"text"}}, {".local/share/Trash/files/file", HardLinkTo{"Code/file"}}});
    home.write(".local/share/Trash/info/file.trashinfo", composeTrashInfo(origin, moved));
    const bool isOurs = origin == home.path("Code/file");
    for (const char* type : {"ext4", "overlay"}) {
      const MountsOfType mounts(type);
      const TrashIntent intent{.originalPath = home.path("Code/file"),
                               .trashPath = home.trash("files/file"),
                               .identity = openItem(reader, home.path("Code/file"))->identity,
                               .date = moved};
      EXPECT_EQ(LinuxTrash(kernel, reader, mounts, places).settle(intent), ActState::atOrigin) << type;
      EXPECT_EQ(contentsOf(home.path("Code/file")), "text");
      EXPECT_EQ(standsAt(home.trash("files/file")), !isOurs) << "another name may have been moved on its own";
      EXPECT_EQ(standsAt(home.trash("info/file.trashinfo")), !isOurs);
    }
  }
}

TEST_F(LinuxTrashSettleTest, WhereATrashCannotBeReadNothingIsKnownAndNothingRemoved) {
  home.write("Code/app/dist/a.js");
  ASSERT_TRUE(move(home.path("Code/app/dist")));
  const TrashIntent intent = recorder.intents.at(0);
  fs::rename(intent.trashPath, intent.originalPath);
  FaultKernel reading;
  LinuxTrash(reading, reader, mountTable, places).settle(intent);
  std::ofstream(home.trash("info/dist.trashinfo")) << composeTrashInfo(intent.originalPath, intent.date);
  const auto& calls = reading.calls();
  for (std::size_t call = 0; call < calls.size() && calls[call] != "unlinkat"; ++call) {
    FaultKernel failing({.kind = Fault::Kind::fail, .call = call, .error = EIO});
    EXPECT_EQ(LinuxTrash(failing, reader, mountTable, places).settle(intent), ActState::unknown) << call;
    EXPECT_TRUE(standsAt(home.trash("info/dist.trashinfo"))) << call;
  }
}

TEST_F(LinuxTrashSettleTest, AnInfoFileOfAnotherProgramStaysWhereOursCannotBeMade) {
  class Racing final : public LinuxKernel {
   public:
    std::string info;
    int openat(int folder, const char* name, int flags, mode_t mode) override {
      if ((flags & O_EXCL) == 0) {
        return LinuxKernel::openat(folder, name, flags, mode);
      }
      std::ofstream(info) << "[Trash Info]\nPath=/another\n";
      errno = EIO;
      return -1;
    }
  } racing;
  racing.info = home.trash("info/dist.trashinfo");
  home.write("Code/app/dist/a.js");
  const auto refused =
      LinuxTrash(racing, reader, mountTable, places).move(*openItem(reader, home.path("Code/app/dist")), 0, recorder);
  ASSERT_FALSE(refused);
  EXPECT_FALSE(refused.error().isSettled) << "the next start looks whose it is";
  EXPECT_EQ(contentsOf(racing.info), "[Trash Info]\nPath=/another\n");
}

}  // namespace
}  // namespace lumenary
