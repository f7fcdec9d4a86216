#include <gtest/gtest.h>
#include <poll.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/linux/LinuxExecutor.h"
#include "platform/linux/LinuxMountWatcher.h"
#include "support/TemporaryHome.h"

namespace lumenary {
namespace {

constexpr int notAllowed = 77;

/// In a mount table of its own: what it saw of three changes, or `notAllowed`.
int watchMounts(const std::string& folder) {
  if (::unshare(CLONE_NEWNS | (::geteuid() == 0 ? 0 : CLONE_NEWUSER)) != 0 ||
      ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
    return notAllowed;
  }
  LinuxMountWatcher watcher;
  LinuxExecutor executor;
  int told = 0;
  const auto wait = [&] {
    pollfd ready{.fd = executor.readiness().number(), .events = POLLIN, .revents = 0};
    ::poll(&ready, 1, 10'000);
    executor.runReady();
  };
  executor.watch(watcher.events(), [&] { told += watcher.read() ? 1 : 0; });
  for (int round = 0; round < 3; ++round) {
    if (::mount("none", folder.c_str(), "tmpfs", 0, nullptr) != 0) {
      return notAllowed;
    }
    wait();
  }
  return told;
}

TEST(LinuxMountWatcher, TellsEachChangeThroughTheExecutor) {
  TemporaryHome home;
  home.makeFolder("drive");
  const pid_t child = ::fork();
  if (child == 0) {
    ::_exit(watchMounts(home.path("drive")));
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  if (WEXITSTATUS(status) == notAllowed) {
    GTEST_SKIP() << "nothing may be mounted here";
  }
  EXPECT_EQ(WEXITSTATUS(status), 3);
}

}  // namespace
}  // namespace lumenary
