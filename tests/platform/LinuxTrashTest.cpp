#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "base/Path.h"
#include "platform/linux/LinuxFileReader.h"
#include "platform/linux/LinuxMountTable.h"
#include "platform/linux/LinuxTrash.h"
#include "platform/linux/TrashInfo.h"
#include "platform/linux/TrashName.h"
#include "platform/linux/TrashSizes.h"
#include "support/FaultKernel.h"
#include "support/HookedReader.h"
#include "support/TemporaryHome.h"
#include "support/TimeZone.h"

namespace lumenary {
namespace {

namespace fs = std::filesystem;

class NotingRecorder final : public IntentRecorder {
 public:
  SystemResult<void> intend(const TrashIntent& intent) override {
    intents.push_back(intent);
    return {};
  }
  std::vector<TrashIntent> intents;
};

class LinuxTrashTest : public testing::Test {
 protected:
  using Moved = std::expected<TrashedItem, TrashError>;

  LinuxTrashTest() : places(home.places()), trash(kernel, reader, mountTable, places) {}

  Moved move(const std::string& path) {
    const auto item = openItem(reader, path);
    return item ? trash.move(*item, 4096, recorder)
                : std::unexpected(TrashError{.refusal = TrashRefusal::missing, .cause = item.error()});
  }
  Moved putBack(const std::string& trashPath, const std::string& originalPath) {
    return trash.putBack(trashPath, originalPath, moved, recorder);
  }
  static TrashRefusal refusal(const Moved& moved) { return moved ? TrashRefusal::failed : moved.error().refusal; }

  TemporaryHome home;
  Places places;
  FaultKernel kernel;
  LinuxFileReader reader;
  LinuxMountTable mountTable;
  LinuxTrash trash;
  NotingRecorder recorder;
  const Date moved = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
};

TEST_F(LinuxTrashTest, MovesAFolderWithItsInfoAndBringsItBack) {
  home.write("Code/my app/dist/a.js", "a");
  const std::string origin = home.path("Code/my app/dist");
  const auto moved = move(origin);
  ASSERT_TRUE(moved.has_value());
  EXPECT_EQ(moved->trashPath, home.trash("files/dist"));
  EXPECT_FALSE(standsAt(origin));
  EXPECT_EQ(contentsOf(home.trash("files/dist/a.js")), "a");
  const auto info = parseTrashInfo(contentsOf(home.trash("info/dist.trashinfo")));
  ASSERT_TRUE(info.has_value());
  EXPECT_EQ(info->path, origin);
  EXPECT_EQ(contentsOf(home.trash("info/dist.trashinfo")).find("my app"), std::string::npos) << "must be encoded";

  trash.writeSizes();
  EXPECT_TRUE(contentsOf(home.trash("directorysizes")).starts_with("4096 "));
  ASSERT_TRUE(putBack(moved->trashPath, origin).has_value());
  trash.writeSizes();
  EXPECT_EQ(contentsOf(origin + "/a.js"), "a");
  EXPECT_TRUE(namesIn(home.trash("info")).empty());
  EXPECT_EQ(contentsOf(home.trash("directorysizes")), "");
  ASSERT_EQ(recorder.intents.size(), 2U);
  EXPECT_EQ(recorder.intents[0].identity, recorder.intents[1].identity);
}

TEST_F(LinuxTrashTest, NamesOfAnyBytesComeBackByteForByte) {
  for (const std::string& name : {std::string("new\nline"), std::string("not \xff\xfe utf8"), std::string("100%"),
                                  std::string(255, 'n'), std::string(" "), std::string("…"), std::string(".hidden")}) {
    home.write("Code/" + name + "/inside", name);
    const std::string origin = home.path("Code/" + name);
    const auto moved = move(origin);
    ASSERT_TRUE(moved.has_value()) << name;
    EXPECT_FALSE(standsAt(origin));
    ASSERT_TRUE(putBack(moved->trashPath, origin).has_value()) << name;
    EXPECT_EQ(contentsOf(origin + "/inside"), name);
  }
}

TEST_F(LinuxTrashTest, NeverOverwritesInTheTrash) {
  home.write(".local/share/Trash/files/dist", "an orphan without info");
  home.write(".local/share/Trash/info/dist.2.trashinfo", "an info without file");
  for (int round = 0; round < 12; ++round) {
    home.write("Code/app/dist/a.js");
    ASSERT_TRUE(move(home.path("Code/app/dist")).has_value()) << round;
  }
  EXPECT_EQ(contentsOf(home.trash("files/dist")), "an orphan without info");
  EXPECT_EQ(contentsOf(home.trash("info/dist.2.trashinfo")), "an info without file");
  EXPECT_EQ(namesIn(home.trash("files")).size(), 13U);
  EXPECT_FALSE(standsAt(home.trash("files/dist.2")));
}

TEST_F(LinuxTrashTest, LinksAreMovedAsLinks) {
  home.write("Documents/kept.txt", "kept");
  home.makeFolder("Code");
  fs::create_directory_symlink(home.path("Documents"), home.path("Code/dist"));
  const auto moved = move(home.path("Code/dist"));
  ASSERT_TRUE(moved.has_value());
  EXPECT_TRUE(fs::is_symlink(moved->trashPath));
  EXPECT_EQ(contentsOf(home.path("Documents/kept.txt")), "kept");
}

TEST_F(LinuxTrashTest, RefusesToReachAnItemThroughALink) {
  home.write("Real/dist/a.js");
  fs::create_directory_symlink(home.path("Real"), home.path("Linked"));
  EXPECT_FALSE(move(home.path("Linked/dist")).has_value());
  EXPECT_TRUE(standsAt(home.path("Real/dist")));
}

TEST_F(LinuxTrashTest, WhatWasPutThereMeanwhileStays) {
  home.write("Code/app/dist/a.js", "confirmed");
  const auto item = openItem(reader, home.path("Code/app/dist"));
  ASSERT_TRUE(item.has_value());
  const auto swap = [&] {
    fs::rename(home.path("Code/app/dist"), home.path("Code/app/elsewhere"));
    home.write("Code/app/dist/b.js", "another");
  };
  struct Case {
    const char* name;
    const char* moment;
  };
  for (const Case& test : {Case{"before anything", ""}, Case{"right before the rename", "renameat2"}}) {
    SCOPED_TRACE(test.name);
    bool isSwapped = false;
    kernel.beforeCall = [&](std::string_view call) {
      if (!isSwapped && (*test.moment == '\0' || call == test.moment)) {
        isSwapped = true;
        swap();
      }
    };
    const auto moved = trash.move(*item, 0, recorder);
    kernel.beforeCall = nullptr;
    EXPECT_EQ(refusal(moved), TrashRefusal::changed);
    EXPECT_EQ(contentsOf(home.path("Code/app/dist/b.js")), "another");
    EXPECT_EQ(contentsOf(home.path("Code/app/elsewhere/a.js")), "confirmed");
    EXPECT_TRUE(namesIn(home.trash("files")).empty());
    EXPECT_TRUE(namesIn(home.trash("info")).empty());
    fs::remove_all(home.path("Code/app/dist"));
    fs::rename(home.path("Code/app/elsewhere"), home.path("Code/app/dist"));
  }
}

TEST_F(LinuxTrashTest, WhatCannotGoBackIsNotTakenForTheConfirmedThingAndKeepsItsInfo) {
  home.write("Code/app/dist/a.js", "confirmed");
  int renames = 0;
  kernel.beforeCall = [&](std::string_view call) {
    if (call == "renameat2" && renames++ == 0) {
      fs::rename(home.path("Code/app/dist"), home.path("Code/app/elsewhere"));
      home.write("Code/app/dist/b.js", "another");
    } else if (call == "renameat2" && renames == 2) {
      home.write("Code/app/dist/c.js", "a third");
    }
  };
  EXPECT_EQ(refusal(move(home.path("Code/app/dist"))), TrashRefusal::changed);
  EXPECT_EQ(contentsOf(home.path("Code/app/elsewhere/a.js")), "confirmed");
  EXPECT_EQ(contentsOf(home.path("Code/app/dist/c.js")), "a third");
  EXPECT_EQ(contentsOf(home.trash("files/dist/b.js")), "another");
  EXPECT_EQ(parseTrashInfo(contentsOf(home.trash("info/dist.trashinfo")))->path, home.path("Code/app/dist"));
}

TEST_F(LinuxTrashTest, TheTrashReplacedByALinkTakesNothingElsewhere) {
  home.write("Code/app/dist/a.js");
  home.makeFolder("Elsewhere");
  kernel.beforeCall = [&](std::string_view call) {
    if (call == "renameat2" && standsAt(home.trash("files")) && !fs::is_symlink(home.trash("files"))) {
      fs::rename(home.trash("files"), home.trash("real files"));
      fs::create_directory_symlink(home.path("Elsewhere"), home.trash("files"));
    }
  };
  ASSERT_TRUE(move(home.path("Code/app/dist")).has_value());
  EXPECT_TRUE(namesIn(home.path("Elsewhere")).empty());
  EXPECT_TRUE(standsAt(home.trash("real files/dist/a.js")));
}

TEST_F(LinuxTrashTest, ASecondMoverOfTheSameItemFindsItGone) {
  home.write("Code/app/dist/a.js");
  const auto item = openItem(reader, home.path("Code/app/dist"));
  ASSERT_TRUE(move(home.path("Code/app/dist")).has_value());
  EXPECT_EQ(refusal(trash.move(*item, 0, recorder)), TrashRefusal::missing);
  EXPECT_EQ(namesIn(home.trash("info")), std::set<std::string>{"dist.trashinfo"});
}

TEST_F(LinuxTrashTest, WithoutExclusiveRenameFilesMoveByLinkAndFoldersStay) {
  class OldKernel final : public LinuxKernel {
   public:
    bool losesReplies = false;

   private:
    int renameat2(int, const char*, int, const char*, unsigned flags) override {
      errno = flags == 0 ? EIO : EINVAL;
      return -1;
    }
    int linkat(int from, const char* fromName, int to, const char* toName, int flags) override {
      const int answer = LinuxKernel::linkat(from, fromName, to, toName, flags);
      errno = EIO;
      return losesReplies ? -1 : answer;
    }
  } old;
  LinuxTrash oldTrash(old, reader, mountTable, places);
  home.write("Code/folder/file");
  for (const bool losesReplies : {false, true}) {
    old.losesReplies = losesReplies;
    home.write("Code/file", "text");
    const auto file = oldTrash.move(*openItem(reader, home.path("Code/file")), 0, recorder);
    ASSERT_TRUE(file.has_value());
    EXPECT_EQ(contentsOf(file->trashPath), "text");
    EXPECT_EQ(fs::hard_link_count(file->trashPath), 1U);
  }
  EXPECT_EQ(refusal(oldTrash.move(*openItem(reader, home.path("Code/folder")), 0, recorder)),
            TrashRefusal::noExclusiveMove);
  EXPECT_TRUE(standsAt(home.path("Code/folder/file")));
  EXPECT_FALSE(standsAt(home.trash("info/folder.trashinfo")));
}

TEST_F(LinuxTrashTest, AnIntentThatCantBeWrittenStopsTheMove) {
  class FullDisk final : public IntentRecorder {
    SystemResult<void> intend(const TrashIntent&) override { return std::unexpected(SystemError{ENOSPC}); }
  } full;
  home.write("Code/app/dist/a.js");
  EXPECT_EQ(refusal(trash.move(*openItem(reader, home.path("Code/app/dist")), 0, full)), TrashRefusal::noSpace);
  EXPECT_TRUE(standsAt(home.path("Code/app/dist/a.js")));
  EXPECT_TRUE(namesIn(home.trash("info")).empty());
}

TEST_F(LinuxTrashTest, GuardedPlacesStay) {
  home.write(".ssh/build/key");
  home.write(".config/app/file");
  home.write(".local/share/Lumenary/build/file");
  home.write(".local/share/Trash/files/old/build/file");
  for (const std::string& path :
       {std::string("/"), std::string("/usr"), std::string("/usr/lib"), home.root(), home.path(".config"),
        home.path(".local"), home.path(".local/share"), home.path(".ssh"), home.path(".ssh/build"),
        home.path(".local/share/Lumenary/build"), home.path(".local/share/Trash/files/old/build"),
        std::string(parentPath(home.root()))}) {
    EXPECT_EQ(refusal(move(path)), TrashRefusal::guarded) << path;
  }
  EXPECT_TRUE(move(home.path(".config/app")).has_value());

  Places overridden = places;
  overridden.home = home.path("other");
  overridden.dataHome = home.path("other/.local/share");
  overridden.accountHome = home.root();
  home.write(".local/share/keyrings/build/key");
  LinuxTrash elsewhere(kernel, reader, mountTable, overridden);
  for (const char* path : {"", ".config", ".ssh/build", ".local/share/keyrings/build"}) {
    EXPECT_EQ(refusal(elsewhere.move(*openItem(reader, home.path(path)), 0, recorder)), TrashRefusal::guarded) << path;
  }
  Places nobody = places;
  nobody.home.clear();
  LinuxTrash homeless(kernel, reader, mountTable, nobody);
  home.write("Code/dist/a.js");
  EXPECT_EQ(refusal(homeless.move(*openItem(reader, home.path("Code/dist")), 0, recorder)), TrashRefusal::guarded);
}

TEST_F(LinuxTrashTest, NothingMovesWhereTheGuardListCannotBeMade) {
  home.write("Code/dist/a.js");
  const auto item = openItem(reader, home.path("Code/dist"));
  for (const auto& [error, isGuarded] : {std::pair(EIO, true), std::pair(EACCES, true), std::pair(ELOOP, false)}) {
    const HookedReader failing(reader, [&, code = error](HookedReader::Call call, std::string_view path) {
      const bool isSecret = call == HookedReader::Call::attributes && path == home.path(".gnupg");
      return isSecret ? std::optional(SystemError{code}) : std::nullopt;
    });
    const auto moved = LinuxTrash(kernel, failing, mountTable, places).move(*item, 0, recorder);
    EXPECT_EQ(refusal(moved) == TrashRefusal::guarded, isGuarded) << error;
  }
}

TEST_F(LinuxTrashTest, PuttingBackIsGuardedTheSameWay) {
  home.write("Code/app/dist/a.js", "a");
  home.write("Code/occupied");
  const std::string inTrash = move(home.path("Code/app/dist"))->trashPath;
  fs::create_directory_symlink(home.path("Code"), home.path("Linked"));
  home.write(".local/share/Trash/files/stranger/file");
  home.write(".local/share/Trash/info/stranger.trashinfo", "[Trash Info]\nPath=/elsewhere\nDeletionDate=x\n");
  home.write("Code/trash/files/own");
  struct Case {
    const char* name;
    std::string trashPath;
    std::string originalPath;
    TrashRefusal expected;
  };
  const Case cases[] = {
      {"climbing origin", inTrash, home.path("Code/../Code/app/dist"), TrashRefusal::guarded},
      {"relative origin", inTrash, "Code/app/dist", TrashRefusal::guarded},
      {"among the keys", inTrash, home.path(".ssh/dist"), TrashRefusal::guarded},
      {"another origin than its info tells", inTrash, home.path("Code/dist"), TrashRefusal::notInTrash},
      {"another item under the name", home.trash("files/stranger"), home.path("Code/x"), TrashRefusal::notInTrash},
      {"not a Trash of this person", home.path("Code/trash/files/own"), home.path("Code/own"),
       TrashRefusal::notInTrash},
      {"gone from the Trash", home.trash("files/gone"), home.path("Code/gone"), TrashRefusal::notInTrash},
  };
  for (const Case& test : cases) {
    EXPECT_EQ(refusal(putBack(test.trashPath, test.originalPath)), test.expected) << test.name;
  }
  home.write("Code/app/dist", "in the way");
  EXPECT_EQ(refusal(putBack(inTrash, home.path("Code/app/dist"))), TrashRefusal::occupied);
  fs::remove_all(home.path("Code/app"));
  EXPECT_EQ(refusal(putBack(inTrash, home.path("Code/app/dist"))), TrashRefusal::parentGone);
  fs::create_directory_symlink(home.path("Code"), home.path("Code/app"));
  EXPECT_EQ(refusal(putBack(inTrash, home.path("Code/app/dist"))), TrashRefusal::parentGone);
  EXPECT_EQ(contentsOf(inTrash + "/a.js"), "a");
}

TEST_F(LinuxTrashTest, SaysTrulyWhatHoldsAnItem) {
  home.write("Code/app/dist/a.js", "a");
  const std::string origin = home.path("Code/app/dist");
  const std::string inTrash = move(origin)->trashPath;
  for (const auto& [error, refused] :
       {std::pair(EACCES, TrashRefusal::parentClosed), std::pair(ENOENT, TrashRefusal::parentGone),
        std::pair(ELOOP, TrashRefusal::parentGone)}) {
    const HookedReader failing(reader, [&, code = error](HookedReader::Call call, std::string_view path) {
      const bool isParent = call == HookedReader::Call::openFolder && path == home.path("Code/app");
      return isParent ? std::optional(SystemError{code}) : std::nullopt;
    });
    EXPECT_EQ(refusal(LinuxTrash(kernel, failing, mountTable, places).putBack(inTrash, origin, moved, recorder)),
              refused);
  }
}

TEST_F(LinuxTrashTest, OnlyWhatWentWithTheRecordedActComesBack) {
  home.write("Code/app/dist/a.js", "a");
  const std::string origin = home.path("Code/app/dist");
  const std::string inTrash = move(origin)->trashPath;
  const std::string infoPath = home.trash("info/dist.trashinfo");
  const auto hours = [](int count) { return std::chrono::hours(count); };
  const struct {
    const char* name;
    std::optional<Date> written;  ///< the date in the info file; none: a damaged one
    Date changed;                 ///< the date of the info file
    TrashRefusal refused;
  } cases[] = {
      {"another act, an hour later", moved + hours(1), moved + hours(1), TrashRefusal::notInTrash},
      {"another act, three minutes later", moved + std::chrono::minutes(3), moved + hours(1), TrashRefusal::notInTrash},
      {"damaged", std::nullopt, moved, TrashRefusal::notInTrash},
  };
  for (const auto& [name, written, changed, refused] : cases) {
    std::ofstream(infoPath) << (written ? composeTrashInfo(origin, *written) : "[Trash Info]\nPath=" + origin + "\n");
    home.setModified(".local/share/Trash/info/dist.trashinfo", changed);
    EXPECT_EQ(refusal(putBack(inTrash, origin)), refused) << name;
  }
  EXPECT_EQ(contentsOf(inTrash + "/a.js"), "a");

  std::ofstream(infoPath) << composeTrashInfo(origin, moved + hours(8));
  home.setModified(".local/share/Trash/info/dist.trashinfo", moved);
  EXPECT_TRUE(putBack(inTrash, origin)) << "the same act, read in another time zone";
}

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

TEST_F(LinuxTrashTest, AnActThatDiedIsToldByWhatStandsWhere) {
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

TEST_F(LinuxTrashTest, AFileThatDiedBetweenItsTwoNamesKeepsTheFirst) {
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

TEST_F(LinuxTrashTest, WhereATrashCannotBeReadNothingIsKnownAndNothingRemoved) {
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

TEST_F(LinuxTrashTest, AnInfoFileOfAnotherProgramStaysWhereOursCannotBeMade) {
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
  std::ofstream(ownTrash() + "/info/dist.trashinfo") << "[Trash Info]\nPath=" << volume << "/app/dist\n";
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

TEST(TrashInfoTest, ReadsWhatTheFormatAllows) {
  const TimeZone zone("XYZ3");
  struct Case {
    const char* name;
    std::string text;
    std::string path;    ///< empty: refused
    std::string date{};  ///< empty: none
  };
  const Case cases[] = {
      {"plain", "[Trash Info]\nPath=/a/b\nDeletionDate=2026-01-02T03:04:05\n", "/a/b", "2026-01-02T06:04:05Z"},
      {"an impossible day", "[Trash Info]\nPath=/a\nDeletionDate=2026-02-29T03:04:05\n", "/a"},
      {"a date that isn't one", "[Trash Info]\nPath=/a\nDeletionDate=2026-01-02 03:04:05\n", "/a"},
      {"a date that goes on", "[Trash Info]\nPath=/a\nDeletionDate=2026-01-02T03:04:05Z\n", "/a"},
      {"encoded", "[Trash Info]\nPath=/a%20b/%FF%0A\n", "/a b/\xff\n"},
      {"first of two counts", "[Trash Info]\nPath=/a\nPath=/b\n", "/a"},
      {"other lines and line ends", "[Trash Info]\r\nX=1\r\nPath=/a\r\n", "/a"},
      {"no header", "Path=/a\n", ""},
      {"header in second line", "\n[Trash Info]\nPath=/a\n", ""},
      {"no path", "[Trash Info]\nDeletionDate=x\n", ""},
      {"empty path", "[Trash Info]\nPath=\n", ""},
      {"broken encoding", "[Trash Info]\nPath=/a%2\n", ""},
      {"encoded end of text", "[Trash Info]\nPath=/a%00b\n", ""},
      {"climbs", "[Trash Info]\nPath=/a/../b\n", ""},
      {"climbs when decoded", "[Trash Info]\nPath=a/%2E%2E/b\n", ""},
      {"nothing", "", ""},
  };
  for (const Case& test : cases) {
    const auto info = parseTrashInfo(test.text);
    EXPECT_EQ(info ? info->path : "", test.path) << test.name;
    EXPECT_EQ(info && info->deleted ? iso8601(*info->deleted) : "", test.date) << test.name;
  }
  EXPECT_EQ(originOf({.path = "a/b"}, "/media/disk"), "/media/disk/a/b");
  EXPECT_EQ(originOf({.path = "a/b"}, ""), std::nullopt);
  EXPECT_EQ(originOf({.path = "/a/b"}, "/media/disk"), std::nullopt);
}

TEST(TrashNameTest, StaysShortAndKeepsTheExtension) {
  struct Case {
    std::string name;
    unsigned attempt;
    std::size_t limit;
    std::string expected;
  };
  const Case cases[] = {
      {"dist", 0, 245, "dist"},           {"dist", 1, 245, "dist.2"},
      {"a.tar", 8, 245, "a.9.tar"},       {".next", 1, 245, ".next.2"},
      {"photo.jpeg", 1, 9, "ph.2.jpeg"},  {"ééé", 0, 5, "éé"},
      {"\xff\xff\xff", 0, 2, "\xff\xff"}, {"a.averyveryverylongextension", 1, 245, "a.averyveryverylongextension.2"},
  };
  for (const Case& test : cases) {
    EXPECT_EQ(trashName(test.name, test.attempt, test.limit), test.expected);
  }
  EXPECT_NE(trashName("dist", 9, 245), trashName("dist", 10, 245));
  EXPECT_EQ(trashName("dist", 9, 245).size(), std::string("dist.00000000").size());
}

TEST(TrashSizesTest, KeepsOtherEntriesAndDropsWhatIsBroken) {
  const FolderSizeChanges changes = {{"new one", FolderSize{.allocatedBytes = 5, .infoModifiedSeconds = 7}},
                                     {"gone", std::nullopt}};
  EXPECT_EQ(updatedFolderSizes("1 2 kept\nbroken\n3 4 gone\n5 x y\n6 7 new%20one", changes),
            "1 2 kept\n5 7 new%20one\n");
}

}  // namespace
}  // namespace lumenary
