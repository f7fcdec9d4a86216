#include "platform/linux/LinuxMountWatcher.h"

#include <fcntl.h>
#include <sys/epoll.h>

namespace lumenary {

LinuxMountWatcher::LinuxMountWatcher() : mounts_(::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC)) {
  Descriptor poll(::epoll_create1(EPOLL_CLOEXEC));
  epoll_event event{};
  event.events = EPOLLPRI;
  if (mounts_ && poll && ::epoll_ctl(poll.number(), EPOLL_CTL_ADD, mounts_.number(), &event) == 0) {
    poll_ = std::move(poll);
  }
}

bool LinuxMountWatcher::read() {
  epoll_event event{};
  return poll_ && ::epoll_wait(poll_.number(), &event, 1, 0) > 0;
}

}  // namespace lumenary
