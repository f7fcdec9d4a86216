#include "platform/linux/LinuxMountWatcher.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <system_error>

namespace lumenary {
namespace {

void count(const Descriptor& counter) {
  constexpr std::uint64_t one = 1;
  static_cast<void>(::write(counter.number(), &one, sizeof one) == sizeof one);
}

}  // namespace

LinuxMountWatcher::LinuxMountWatcher()
    : mounts_(::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC)), end_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  Descriptor changes(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
  if (!mounts_ || !changes || !end_) {
    return;
  }
  changes_ = std::move(changes);
  try {
    thread_ = std::thread([this] { watch(); });
  } catch (const std::system_error&) {
    changes_ = Descriptor();
  }
}

LinuxMountWatcher::~LinuxMountWatcher() {
  if (thread_.joinable()) {
    count(end_);
    thread_.join();
  }
}

void LinuxMountWatcher::watch() const {
  while (true) {
    std::array<pollfd, 2> files{{{.fd = mounts_.number(), .events = POLLPRI, .revents = 0},
                                 {.fd = end_.number(), .events = POLLIN, .revents = 0}}};
    if (::poll(files.data(), files.size(), -1) < 0 && errno != EINTR) {
      return;
    }
    if (files[1].revents != 0) {
      return;
    }
    if (files[0].revents != 0) {
      count(changes_);
    }
  }
}

bool LinuxMountWatcher::read() {
  std::uint64_t changes = 0;
  return ::read(changes_.number(), &changes, sizeof changes) == sizeof changes;
}

}  // namespace lumenary
