#include "platform/linux/LinuxInterruption.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <array>
#include <system_error>

namespace lumenary {
namespace {

sigset_t signalsToTake() {
  sigset_t taken;
  sigemptyset(&taken);
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction current{};
    // What is ignored on entry stays so: a program under nohup outlives its terminal.
    if (::sigaction(number, nullptr, &current) == 0 && current.sa_handler != SIG_IGN) {
      sigaddset(&taken, number);
    }
  }
  return taken;
}

}  // namespace

LinuxInterruption::LinuxInterruption() {
  taken_ = signalsToTake();
  signals_ = Descriptor(::signalfd(-1, &taken_, SFD_CLOEXEC));
  end_ = Descriptor(::eventfd(0, EFD_CLOEXEC));
  ::pthread_sigmask(SIG_SETMASK, nullptr, &formerMask_);
  // Without the descriptors or a thread the signals keep their effect: the process simply ends.
  if (!signals_ || !end_) {
    return;
  }
  ::pthread_sigmask(SIG_BLOCK, &taken_, nullptr);
  try {
    listener_ = std::thread([this] { listen(); });
  } catch (const std::system_error&) {
    ::pthread_sigmask(SIG_SETMASK, &formerMask_, nullptr);
  }
}

LinuxInterruption::~LinuxInterruption() {
  if (listener_.joinable()) {
    ::eventfd_write(end_.number(), 1);
    listener_.join();
  }
  ::pthread_sigmask(SIG_SETMASK, &formerMask_, nullptr);
}

void LinuxInterruption::listen() {
  std::array<pollfd, 2> sources{pollfd{.fd = signals_.number(), .events = POLLIN, .revents = 0},
                                pollfd{.fd = end_.number(), .events = POLLIN, .revents = 0}};
  while (::poll(sources.data(), sources.size(), -1) < 0) {
  }
  signalfd_siginfo taken{};
  if ((sources[0].revents & POLLIN) != 0 &&
      ::read(signals_.number(), &taken, sizeof taken) == static_cast<ssize_t>(sizeof taken)) {
    signal_ = static_cast<int>(taken.ssi_signo);
    stop_.request_stop();
    // This thread takes the next one, with its plain effect: a person who insists isn't kept waiting by a disk that
    // doesn't answer.
    ::pthread_sigmask(SIG_UNBLOCK, &taken_, nullptr);
    while (::poll(&sources[1], 1, -1) < 0) {
    }
  }
}

void LinuxInterruption::endProcessIfInterrupted() {
  const int number = signal_;
  if (number == 0) {
    return;
  }
  ::signal(number, SIG_DFL);
  sigset_t only;
  sigemptyset(&only);
  sigaddset(&only, number);
  ::pthread_sigmask(SIG_UNBLOCK, &only, nullptr);
  ::raise(number);
}

}  // namespace lumenary
