#include "support/LinuxTrashTest.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "base/Path.h"
#include "platform/linux/TrashInfo.h"
#include "support/HookedReader.h"

namespace lumenary {
namespace {

namespace fs = std::filesystem;

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
  home.write(".local/share/Trash/info/stranger.trashinfo", composeTrashInfo("/elsewhere", moved));
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

}  // namespace
}  // namespace lumenary
