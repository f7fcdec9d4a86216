#pragma once

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <fstream>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "platform/Descriptor.h"

namespace lumenary {

/// A process of the test's own. It does one thing, says that it is done, and goes on to the next when it is told so; it
/// ends with the value.
class ChildProcess {
 public:
  /// Each step runs in the child; the constructor returns after the first one.
  explicit ChildProcess(const std::vector<std::function<void()>>& steps) {
    std::array<int, 2> toChild{};
    std::array<int, 2> toTest{};
    if (::pipe2(toChild.data(), O_CLOEXEC) != 0 || ::pipe2(toTest.data(), O_CLOEXEC) != 0) {
      return;
    }
    pid = ::fork();
    if (pid == 0) {
      ::prctl(PR_SET_PDEATHSIG, SIGTERM);
      ::close(toChild[1]);
      ::close(toTest[0]);
      char word = 0;
      for (const auto& step : steps) {
        step();
        if (::write(toTest[1], "x", 1) != 1 || ::read(toChild[0], &word, 1) != 1) {
          break;
        }
      }
      ::_exit(0);
    }
    ::close(toChild[0]);
    ::close(toTest[1]);
    tell_ = Descriptor(toChild[1]);
    hear_ = Descriptor(toTest[0]);
    waitForStep();
  }
  ~ChildProcess() { end(); }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  /// Lets the child do its next step, and waits until that is done.
  void goOn() const {
    if (::write(tell_.number(), "x", 1) == 1) {
      waitForStep();
    }
  }

  /// Ends it and asks how it ended: nothing of it is left.
  void end() {
    if (pid > 0) {
      ::kill(pid, SIGKILL);
      ::waitpid(std::exchange(pid, -1), nullptr, 0);
    }
  }
  /// Ends it, and leaves it as one that nobody asked about.
  void leaveUnasked() const {
    ::kill(pid, SIGKILL);
    siginfo_t info{};
    ::waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOWAIT);
  }

  pid_t pid = -1;

 private:
  void waitForStep() const {
    char word = 0;
    [[maybe_unused]] const auto count = ::read(hear_.number(), &word, 1);
  }

  Descriptor tell_;
  Descriptor hear_;
};

/// Makes the next process have this number, where the system lets it.
inline bool giveNext(pid_t pid) {
  std::ofstream file("/proc/sys/kernel/ns_last_pid");
  file << pid - 1 << std::flush;
  return file.good();
}

/// A process that has the number of one that ended; null where that can't be had.
inline std::unique_ptr<ChildProcess> takeNumber(pid_t pid) {
  for (int attempt = 0; attempt < 200 && giveNext(pid); ++attempt) {
    auto child = std::make_unique<ChildProcess>(std::vector<std::function<void()>>{[] {}});
    if (child->pid == pid) {
      return child;
    }
  }
  return nullptr;
}

}  // namespace lumenary
