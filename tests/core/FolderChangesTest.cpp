#include <gtest/gtest.h>

#include <chrono>

#include "core/FolderChanges.h"
#include "platform/linux/LinuxFolderWatcher.h"
#include "support/ManualAsync.h"
#include "support/TemporaryHome.h"

namespace lumenary {
namespace {

using namespace std::chrono_literals;

TEST(FolderChanges, AreToldOnceWhenTheFoldersAreQuietAndAgainAfterTheFoldersWereChanged) {
  TemporaryHome home;
  home.makeFolder("one");
  home.makeFolder("two");
  ManualExecutor owner;
  LinuxFolderWatcher watcher;
  int told = 0;
  const auto change = [&](const std::string& file) {
    home.write(file);
    owner.pollWatched();
  };
  {
    FolderChanges changes(owner, watcher, 4s, [&] { ++told; });
    changes.watch({home.path("one")});
    for (const char* const file : {"one/a", "one/b", "one/c"}) {
      change(file);
      owner.advance(3s);
    }
    EXPECT_EQ(told, 0);
    owner.advance(1s);
    EXPECT_EQ(told, 1);
    for (const char* const folder : {"two", "one", "two"}) {
      changes.watch({home.path(folder)});
      change(std::string(folder) + "/" + std::to_string(told));
      owner.advance(4s);
    }
    EXPECT_EQ(told, 4);
    change("two/last");
  }
  EXPECT_EQ(owner.timerCount(), 0U);
  owner.pollWatched();
  owner.advance(10s);
  EXPECT_EQ(told, 4);
}

}  // namespace
}  // namespace lumenary
