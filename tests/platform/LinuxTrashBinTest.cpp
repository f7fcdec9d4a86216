#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/linux/LinuxTrashBin.h"
#include "support/JudgedHome.h"
#include "support/LinuxTrashTest.h"

namespace lumenary {
namespace {

using Names = std::set<std::string>;

/// A Trash with some items, each with its info file.
class LinuxTrashBinTest : public LinuxTrashTest {
 protected:
  LinuxTrashBinTest() {
    home.makeFolder(".local/share/Trash/files");
    home.makeFolder(".local/share/Trash/info");
    // Never the machine's own: what is in the Trash of whoever runs the tests must stay.
    made.all = {{.id = 1, .point = home.path("volume"), .type = "ext4"},
                {.id = 2, .point = home.path("again"), .type = "ext4"},
                {.id = 3, .point = home.path("server"), .type = "nfs", .kind = MountKind::network}};
  }

  void put(const std::string& name) { home.write(".local/share/Trash/info/" + name + ".trashinfo"); }
  void putFile(const std::string& name) {
    put(name);
    home.write(".local/share/Trash/files/" + name);
  }
  void putFolder(const std::string& name, const std::vector<std::string>& files = {"a", "b/c", "b/d/e"}) {
    put(name);
    home.makeFolder(".local/share/Trash/files/" + name);
    for (const std::string& file : files) {
      home.write(".local/share/Trash/files/" + name + "/" + file);
    }
  }
  TrashEmptying empty(LinuxKernel& with, unsigned workers = 1, const std::stop_token& stop = {},
                      const EmptyingProgress& progress = {}) {
    return LinuxTrashBin(with, reader, made, places, workers).empty(progress, stop);
  }
  MadeMounts made;
  Names files() const { return namesIn(home.trash("files")); }
  Names infos() const { return namesIn(home.trash("info")); }
  Names passing() const { return namesIn(home.trash("expunged")); }
};

TEST_F(LinuxTrashBinTest, RemovesAllOfItAndNothingBeyond) {
  home.write("mine/kept");
  putFile("file");
  putFile("odd\n\xff name");
  putFolder("folder");
  put("link");
  put("closed");
  home.build({{".local/share/Trash/files/link", LinkTo{home.path("mine")}},
              {".local/share/Trash/files/folder/b/link", LinkTo{home.path("mine")}},
              {".local/share/Trash/files/closed/deeper/x"},
              {".local/share/Trash/files/without info"},
              {".local/share/Trash/directorysizes", Content{"5 7 folder\n5 7 other\n"}}});
  ::chmod(home.trash("files/closed/deeper").c_str(), 0500);
  ::chmod(home.trash("files/closed").c_str(), 0000);
  std::vector<std::size_t> steps;
  const auto emptying = empty(kernel, 1, {}, [&](std::size_t done, std::size_t of) {
    EXPECT_EQ(of, 6U);
    steps.push_back(done);
  });
  EXPECT_EQ(emptying, (TrashEmptying{.removedCount = 6}));
  EXPECT_EQ(steps, (std::vector<std::size_t>{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(files(), Names());
  EXPECT_EQ(infos(), Names());
  EXPECT_EQ(passing(), Names());
  EXPECT_EQ(namesIn(home.path("mine")), Names{"kept"});
  EXPECT_EQ(contentsOf(home.trash("directorysizes")), "5 7 other\n");
  EXPECT_EQ(empty(kernel), TrashEmptying());
}

TEST_F(LinuxTrashBinTest, GoesThroughTheTrashesOfLocalVolumes) {
  const std::string user = std::to_string(places.userID);
  for (const std::string& trash : {"volume/.Trash-" + user, "volume/.Trash/" + user, "server/.Trash-" + user}) {
    home.write(trash + "/files/x");
    home.write(trash + "/info/x.trashinfo");
  }
  EXPECT_EQ(empty(kernel).removedCount, 1U) << "a shared one without the sticky bit doesn't count";
  ::chmod(home.path("volume/.Trash").c_str(), 01777);
  home.rename("volume/.Trash-" + user, "volume/private");
  home.write("volume/private/files/x");
  home.build({{"volume/.Trash-" + user, LinkTo{"private"}}});
  EXPECT_EQ(empty(kernel), (TrashEmptying{.removedCount = 1})) << "a link isn't followed";
  EXPECT_TRUE(standsAt(home.path("volume/private/files/x")));
  EXPECT_TRUE(standsAt(home.path("server/.Trash-" + user + "/files/x")));
  const auto folders = LinuxTrashBin(kernel, reader, made, places, 1).itemFolders();
  EXPECT_EQ(folders->front(), home.trash("files"));
  EXPECT_EQ(folders->size(), 5U);
}

TEST_F(LinuxTrashBinTest, RemovesTenThousandItemsAndDeepOnesOnSeveralThreads) {
  for (int index = 0; index < 10'000; ++index) {
    putFile(std::to_string(index));
  }
  home.buildChain(1500, {{"f"}});
  put("d");
  home.rename("d", ".local/share/Trash/files/d");
  LinuxKernel plain;
  EXPECT_EQ(empty(plain, 4).removedCount, 10'001U);
  EXPECT_EQ(files(), Names());
  EXPECT_EQ(infos(), Names());
}

TEST_F(LinuxTrashBinTest, ATrashBehindALinkIsLeftAloneAndTold) {
  home.write("mine/kept");
  for (const std::string& part : {std::string("files"), std::string("info"), std::string()}) {
    SCOPED_TRACE(part);
    const std::string place = ".local/share/Trash" + (part.empty() ? "" : "/" + part);
    home.rename(place, "aside");
    home.build({{place, LinkTo{home.path("mine")}}});
    EXPECT_NE(empty(kernel).cause.code, 0);
    EXPECT_EQ(namesIn(home.path("mine")), Names{"kept"});
    home.remove(place);
    home.rename("aside", place);
  }
}

TEST_F(LinuxTrashBinTest, WhatIsLeftOfAKilledEmptyingGoesWithTheNext) {
  home.write(".local/share/Trash/expunged/0/a");
  put("gone");
  put("being moved now");
  home.setModified(".local/share/Trash/info/gone.trashinfo", moved - std::chrono::hours(2));
  EXPECT_EQ(empty(kernel), TrashEmptying());
  EXPECT_EQ(passing(), Names());
  EXPECT_EQ(infos(), Names{"being moved now.trashinfo"});
}

TEST_F(LinuxTrashBinTest, StopsBetweenTwoFilesAndKeepsTheRestInTheTrash) {
  putFile("file");
  putFolder("folder");
  std::stop_source stop;
  kernel.beforeCall = [&](std::string_view call) {
    if (call == "unlinkat") {
      stop.request_stop();
    }
  };
  const auto emptying = empty(kernel, 1, stop.get_token());
  EXPECT_TRUE(emptying.isCancelled);
  EXPECT_EQ(emptying.removedCount + emptying.leftCount, 2U);
  EXPECT_EQ(emptying.leftCount, files().size());
  EXPECT_EQ(passing(), Names());
}

/// Each name in `files` has its info file and is complete or told as left; nothing else of the person is touched.
TEST_F(LinuxTrashBinTest, AFailureOfAnyCallKeepsItemAndRecordTogether) {
  home.write("mine/kept");
  FaultKernel counting;
  putFile("file");
  putFolder("folder");
  ASSERT_EQ(empty(counting).removedCount, 2U);
  const auto calls = counting.calls();
  for (std::size_t call = 0; call < calls.size(); ++call) {
    for (const int error : errorsOf(calls[call])) {
      if (calls[call] == "statx" && error == ENOENT) {
        continue;  // what isn't there is taken for gone
      }
      SCOPED_TRACE(std::string(calls[call]) + " number " + std::to_string(call) + ", error " + std::to_string(error));
      home.remove(".local/share/Trash/files");
      home.remove(".local/share/Trash/info");
      home.remove(".local/share/Trash/expunged");
      home.makeFolder(".local/share/Trash/files");
      home.makeFolder(".local/share/Trash/info");
      putFile("file");
      putFolder("folder");
      FaultKernel faulty({.kind = Fault::Kind::fail, .call = call, .error = error});
      const auto emptying = empty(faulty);
      const Names left = files();
      const Names told = infos();
      for (const std::string& name : left) {
        EXPECT_TRUE(told.contains(name + ".trashinfo")) << name << " has lost its origin";
      }
      EXPECT_TRUE(left.empty() || emptying.leftCount > 0 || emptying.cause.code != 0) << "told as emptied";
      EXPECT_TRUE(passing().empty() || emptying.leftCount > 0) << "left on its way out";
      EXPECT_EQ(namesIn(home.path("mine")), Names{"kept"});
      EXPECT_EQ(empty(kernel).leftCount, 0U) << "the next one finishes";
      EXPECT_EQ(files(), Names());
    }
  }
}

TEST_F(LinuxTrashBinTest, CrashesLeaveFoldersWholeOrGone) {
  FaultKernel counting;
  putFolder("folder");
  ASSERT_EQ(empty(counting).removedCount, 1U);
  for (std::size_t call = 0; call < counting.calls().size(); ++call) {
    SCOPED_TRACE("killed after call " + std::to_string(call));
    home.remove(".local/share/Trash/expunged");
    putFolder("folder");
    const pid_t child = ::fork();
    if (child == 0) {
      FaultKernel killing({.kind = Fault::Kind::killAfter, .call = call});
      empty(killing);
      ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    if (!files().empty()) {
      EXPECT_TRUE(standsAt(home.trash("files/folder/b/d/e")) && standsAt(home.trash("files/folder/a")));
      EXPECT_TRUE(standsAt(home.trash("info/folder.trashinfo")));
    }
    EXPECT_EQ(empty(kernel).leftCount, 0U);
    EXPECT_EQ(files(), Names());
    EXPECT_EQ(passing(), Names());
  }
}

}  // namespace
}  // namespace lumenary
