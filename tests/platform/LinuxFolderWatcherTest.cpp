#include <gtest/gtest.h>
#include <poll.h>

#include "platform/linux/LinuxFolderWatcher.h"
#include "support/TemporaryHome.h"

namespace lumenary {
namespace {

struct WatchedHome {
  TemporaryHome home;
  LinuxFolderWatcher watcher;

  void watch(std::initializer_list<const char*> relatives) {
    std::vector<std::string> folders;
    for (const char* const relative : relatives) {
      folders.push_back(home.path(relative));
    }
    watcher.watch(folders);
  }
  /// What is told of changes that were made: inotify queues them before the change returns.
  bool isTold() {
    pollfd question{.fd = watcher.events().number(), .events = POLLIN, .revents = 0};
    return ::poll(&question, 1, 0) > 0 && watcher.read();
  }
};

TEST(LinuxFolderWatcher, TellsWhatComesGoesAndIsRenamed) {
  WatchedHome watched;
  watched.home.write("apps/old.desktop");
  watched.home.makeFolder("other");
  watched.watch({"apps", "apps/../apps/"});
  EXPECT_FALSE(watched.isTold());
  watched.home.write("apps/new.desktop");
  EXPECT_TRUE(watched.isTold());
  EXPECT_FALSE(watched.isTold()) << "once";
  watched.home.rename("apps/new.desktop", "other/moved");
  EXPECT_TRUE(watched.isTold());
  watched.home.rename("other/moved", "apps/back");
  EXPECT_TRUE(watched.isTold());
  watched.home.remove("apps/old.desktop");
  EXPECT_TRUE(watched.isTold());
  watched.home.write("other/x");
  EXPECT_FALSE(watched.isTold());
}

TEST(LinuxFolderWatcher, AFolderMayComeLaterAndGo) {
  WatchedHome watched;
  watched.watch({"a/b/apps"});
  watched.home.write("unrelated");
  EXPECT_FALSE(watched.isTold());
  watched.home.makeFolder("a");
  EXPECT_FALSE(watched.isTold());
  watched.home.makeFolder("a/b/apps");
  EXPECT_TRUE(watched.isTold());
  watched.home.write("a/b/apps/x");
  EXPECT_TRUE(watched.isTold());
  watched.home.rename("a/b/apps", "a/b/away");
  EXPECT_TRUE(watched.isTold());
  watched.home.write("a/b/away/y");
  EXPECT_FALSE(watched.isTold()) << "it is another folder now";
  watched.home.makeFolder("a/b/apps");
  EXPECT_TRUE(watched.isTold());
  watched.home.remove("a/b/apps");
  EXPECT_TRUE(watched.isTold());
  watched.home.remove("a");
  EXPECT_FALSE(watched.isTold()) << "what was waited in is no folder of apps";
  watched.home.makeFolder("a/b/apps");
  EXPECT_TRUE(watched.isTold());
}

TEST(LinuxFolderWatcher, WhatItCannotWatchIsLeftOut) {
  WatchedHome watched;
  EXPECT_FALSE(watched.watcher.read()) << "before anything is watched";
  watched.home.write("file");
  watched.home.build({{"loop", LinkTo{"loop"}}});
  watched.watch({"file", "file/apps", "loop/apps"});
  EXPECT_FALSE(watched.isTold());
  watched.home.remove("file");
  watched.home.makeFolder("file");
  EXPECT_TRUE(watched.isTold());
  watched.watch({"other"});
  watched.home.write("file/x");
  EXPECT_FALSE(watched.isTold()) << "it isn't watched any more";
}

TEST(LinuxFolderWatcher, AQueueThatRunsOverIsAChange) {
  WatchedHome watched;
  watched.home.makeFolder("apps");
  watched.home.makeFolder("busy");
  watched.watch({"apps", "busy/later"});
  const std::string limit = contentsOf("/proc/sys/fs/inotify/max_queued_events");
  const long most = limit.empty() ? 0 : std::stol(limit);
  if (most <= 0 || most > 20'000) {
    GTEST_SKIP() << "the queue is too long to be filled: " << most;
  }
  watched.home.write("busy/a");
  for (long count = 0; count < most; ++count) {
    watched.home.rename(count % 2 == 0 ? "busy/a" : "busy/b", count % 2 == 0 ? "busy/b" : "busy/a");
  }
  EXPECT_TRUE(watched.isTold());
  watched.home.write("apps/x");
  EXPECT_TRUE(watched.isTold()) << "and what comes then is told as ever";
}

}  // namespace
}  // namespace lumenary
