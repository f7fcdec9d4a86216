#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "platform/ThreadPriority.h"

namespace lumenary {
namespace {

// linux/ioprio.h, which Debian's headers have, is for the kernel's own C.
constexpr int ioprioWhoProcess = 1;
constexpr int ioprioClassShift = 13;
constexpr int ioprioBestEffort = 2;
constexpr int ioprioIdle = 3;
constexpr int lowestOfItsClass = 7;

void setPriorities(int nice, int ioClass, int ioLevel) {
  const auto thread = static_cast<id_t>(::syscall(SYS_gettid));
  ::setpriority(PRIO_PROCESS, thread, nice);
  ::syscall(SYS_ioprio_set, ioprioWhoProcess, 0, (ioClass << ioprioClassShift) | ioLevel);
}

}  // namespace

void setThreadPriority(ThreadPriority priority) {
  switch (priority) {
    case ThreadPriority::normal:
      break;
    case ThreadPriority::low:
      setPriorities(10, ioprioBestEffort, lowestOfItsClass);
      break;
    case ThreadPriority::lowest:
      setPriorities(19, ioprioIdle, 0);
      break;
  }
}

}  // namespace lumenary
