#include "support/ProgramRun.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdint>

#include "support/TemporaryHome.h"

namespace lumenary {
namespace {

constexpr int cannotTrace = 77;
constexpr auto patience = std::chrono::seconds(60);

/// Replaces this process by the program.
[[noreturn]] void becomeProgram(const std::string& home, const std::vector<std::string>& arguments) {
  std::vector<std::string> texts = {LUMENARY_EXECUTABLE};
  texts.insert(texts.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  std::string homeVariable = "HOME=" + home;
  std::string zone = "TZ=UTC0";
  std::string terminal = "TERM=xterm";
  std::array<char*, 4> environment = {homeVariable.data(), zone.data(), terminal.data(), nullptr};
  ::execve(LUMENARY_EXECUTABLE, pointers.data(), environment.data());
  ::_exit(126);
}

std::string allOf(const Descriptor& file) {
  std::string text;
  std::array<char, 4096> buffer;
  ::lseek(file.number(), 0, SEEK_SET);
  for (ssize_t count = 0; (count = ::read(file.number(), buffer.data(), buffer.size())) > 0;) {
    text.append(buffer.data(), static_cast<std::size_t>(count));
  }
  return text;
}

Descriptor memoryFile() { return Descriptor(::memfd_create("output", MFD_CLOEXEC)); }

/// The set of blocked signals, as the kernel tells it: "SigBlk:" and a number of 16 hexadecimal digits.
std::uint64_t blockedSignals(pid_t process, pid_t thread) {
  const std::string status =
      contentsOf("/proc/" + std::to_string(process) + "/task/" + std::to_string(thread) + "/status");
  const std::size_t line = status.find("SigBlk:");
  return line == std::string::npos ? 0 : std::stoull(status.substr(line + 7, 17), nullptr, 16);
}

}  // namespace

bool ProgramRun::exitedWith(int status) const { return WIFEXITED(waitStatus) && WEXITSTATUS(waitStatus) == status; }

bool ProgramRun::wasKilledBy(int signal) const { return WIFSIGNALED(waitStatus) && WTERMSIG(waitStatus) == signal; }

ProgramRun runProgram(const std::string& home, const std::vector<std::string>& arguments,
                      const std::function<void()>& prepare) {
  const Descriptor output = memoryFile();
  const Descriptor errors = memoryFile();
  const pid_t program = ::fork();
  if (program == 0) {
    ::dup2(output.number(), STDOUT_FILENO);
    ::dup2(errors.number(), STDERR_FILENO);
    prepare();
    becomeProgram(home, arguments);
  }
  ProgramRun run;
  ::waitpid(program, &run.waitStatus, 0);
  run.output = allOf(output);
  run.errors = allOf(errors);
  return run;
}

TracedProgram::TracedProgram(const std::string& home, const std::vector<std::string>& arguments)
    : terminal_(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)), output_(memoryFile()) {
  ::grantpt(terminal_.number());
  ::unlockpt(terminal_.number());
  const std::string shown = ::ptsname(terminal_.number());
  program_ = ::fork();
  if (program_ == 0) {
    // The first terminal that the leader of a session opens is the one whose keys reach it.
    ::setsid();
    const int screen = ::open(shown.c_str(), O_RDWR);
    ::dup2(screen, STDIN_FILENO);
    ::dup2(screen, STDERR_FILENO);
    ::dup2(output_.number(), STDOUT_FILENO);
    if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) {
      ::_exit(cannotTrace);
    }
    // A program that hangs ends, and fails its test.
    ::alarm(static_cast<unsigned>(patience.count()));
    ::raise(SIGSTOP);
    becomeProgram(home, arguments);
  }
  int status = 0;
  ::waitpid(program_, &status, 0);
  isTraced_ = WIFSTOPPED(status);
  hasEnded_ = !isTraced_;
  if (isTraced_) {
    ::ptrace(PTRACE_SETOPTIONS, program_, nullptr,
             PTRACE_O_EXITKILL | PTRACE_O_TRACEEXEC | PTRACE_O_TRACEEXIT | PTRACE_O_TRACECLONE);
    ::ptrace(PTRACE_CONT, program_, nullptr, nullptr);
  }
}

TracedProgram::~TracedProgram() {
  if (!hasEnded_) {
    ::kill(program_, SIGKILL);
    ::ptrace(PTRACE_CONT, program_, nullptr, nullptr);  // it may stand in its exit, where no signal reaches it
    while (!hasEnded_) {
      resume(next());
    }
  }
}

TracedProgram::Stop TracedProgram::next() {
  Stop stop;
  stop.thread = ::waitpid(-1, &stop.waitStatus, __WALL);
  const int event = WIFSTOPPED(stop.waitStatus) ? stop.waitStatus >> 16 : 0;
  if (!WIFSTOPPED(stop.waitStatus) && stop.thread == program_) {
    stop.kind = Stop::Kind::programEnded;
    hasEnded_ = true;
  } else if (event == PTRACE_EVENT_EXIT && stop.thread == program_) {
    stop.kind = Stop::Kind::programEnds;
  } else if (event == PTRACE_EVENT_CLONE) {
    stop.kind = Stop::Kind::threadMade;
    unsigned long made = 0;
    ::ptrace(PTRACE_GETEVENTMSG, stop.thread, nullptr, &made);
    stop.made = static_cast<pid_t>(made);
  } else if (stop.thread != program_ && event == 0 && WSTOPSIG(stop.waitStatus) == SIGSTOP) {
    stop.kind = Stop::Kind::threadBegins;
  }
  return stop;
}

void TracedProgram::resume(const Stop& stop) {
  const bool isSignal =
      WIFSTOPPED(stop.waitStatus) && stop.waitStatus >> 16 == 0 && stop.kind != Stop::Kind::threadBegins;
  ::ptrace(PTRACE_CONT, stop.thread, nullptr, isSignal ? WSTOPSIG(stop.waitStatus) : 0);
}

std::string TracedProgram::maps() const { return contentsOf("/proc/" + std::to_string(program_) + "/maps"); }

std::string TracedProgram::output() const { return allOf(output_); }

std::string TracedProgram::awaitOnTerminal(const std::string& text) {
  std::string shown;
  std::array<char, 256> buffer;
  pollfd ready{.fd = terminal_.number(), .events = POLLIN, .revents = 0};
  while (shown.find(text) == std::string::npos &&
         ::poll(&ready, 1, static_cast<int>(std::chrono::milliseconds(patience).count())) > 0) {
    const ssize_t count = ::read(terminal_.number(), buffer.data(), buffer.size());
    if (count <= 0) {
      break;
    }
    shown.append(buffer.data(), static_cast<std::size_t>(count));
  }
  return shown;
}

std::string TracedProgram::restOfTerminal() { return awaitOnTerminal(std::string(1, '\0')); }

void TracedProgram::pressControlC() { static_cast<void>(::write(terminal_.number(), "\x03", 1)); }

bool TracedProgram::awaitUnblocked(pid_t thread, int signal) const {
  const std::uint64_t bit = std::uint64_t{1} << (signal - 1);
  const auto giveUp = std::chrono::steady_clock::now() + patience;
  bool isBlocked = true;
  while (isBlocked && std::chrono::steady_clock::now() < giveUp) {
    isBlocked = (blockedSignals(program_, thread) & bit) != 0;
  }
  return !isBlocked;
}

}  // namespace lumenary
