#include "platform/linux/LinuxTerminal.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>

namespace lumenary {
namespace {

bool writeAll(int file, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(file, text.data(), text.size());
    if (written >= 0) {
      text.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno == EAGAIN) {
      // Another program that shares the pipe or terminal made it non-blocking.
      pollfd room{.fd = file, .events = POLLOUT, .revents = 0};
      ::poll(&room, 1, -1);
    } else if (errno != EINTR) {
      return false;
    }
  }
  return true;
}

std::string_view variable(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::string_view() : value;
}

}  // namespace

bool LinuxTerminal::writeOutput(std::string_view text) { return writeAll(STDOUT_FILENO, text); }

void LinuxTerminal::writeError(std::string_view text) { writeAll(STDERR_FILENO, text); }

bool LinuxTerminal::showsProgress() const {
  const std::string_view terminal = variable("TERM");
  return !terminal.empty() && terminal != "dumb" && variable("NO_COLOR").empty() && ::isatty(STDERR_FILENO) == 1;
}

}  // namespace lumenary
