#include "platform/linux/LinuxToolRunner.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "platform/Descriptor.h"

namespace lumenary {
namespace {

using Clock = std::chrono::steady_clock;

constexpr auto patience = std::chrono::seconds(1);  ///< for a tool that was asked to end

enum class Language : std::uint8_t { plainEnglish, asTheyAre };

/// The environment of this process, with messages in the language wanted.
std::vector<std::string> toolEnvironment(Language language) {
  const bool isPlain = language == Language::plainEnglish;
  std::vector<std::string> variables;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    const std::string_view text = *variable;
    if (!isPlain || (!text.starts_with("LC_ALL=") && !text.starts_with("LANGUAGE="))) {
      variables.emplace_back(text);
    }
  }
  if (isPlain) {
    variables.emplace_back("LC_ALL=C");
  }
  return variables;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  result.reserve(texts.size() + 1);
  for (std::string& text : texts) {
    result.push_back(text.data());
  }
  result.push_back(nullptr);
  return result;
}

/// What a child starts with: its three standard descriptors, a group of its own, and signals as they are by default.
class SpawnPlan {
 public:
  SpawnPlan(int output, Language language) : language_(language) {
    ::posix_spawn_file_actions_init(&actions_);
    ::posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_adddup2(&actions_, output, STDOUT_FILENO);
    ::posix_spawn_file_actions_addopen(&actions_, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    ::posix_spawnattr_init(&attributes_);
    sigset_t all{};
    ::sigfillset(&all);
    ::posix_spawnattr_setsigdefault(&attributes_, &all);
    sigset_t none{};
    ::sigemptyset(&none);
    ::posix_spawnattr_setsigmask(&attributes_, &none);
    ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
  }
  SpawnPlan(const SpawnPlan&) = delete;
  SpawnPlan& operator=(const SpawnPlan&) = delete;
  ~SpawnPlan() {
    ::posix_spawnattr_destroy(&attributes_);
    ::posix_spawn_file_actions_destroy(&actions_);
  }

  std::optional<pid_t> start(const ToolCommand& command) const {
    std::vector<std::string> arguments = {command.path};
    arguments.insert(arguments.end(), command.arguments.begin(), command.arguments.end());
    std::vector<std::string> environment = toolEnvironment(language_);
    pid_t child = 0;
    const int error = ::posix_spawn(&child, command.path.c_str(), &actions_, &attributes_, pointers(arguments).data(),
                                    pointers(environment).data());
    return error == 0 ? std::optional(child) : std::nullopt;
  }

 private:
  Language language_;
  posix_spawn_file_actions_t actions_{};
  posix_spawnattr_t attributes_{};
};

/// Waits until `file` can be read or the time has come.
bool waitUntil(int file, Clock::time_point deadline) {
  for (;;) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    if (left.count() <= 0) {
      return false;
    }
    pollfd question{.fd = file, .events = POLLIN, .revents = 0};
    constexpr std::int64_t longest = 1'000'000;
    const int ready = ::poll(&question, 1, static_cast<int>(std::min<std::int64_t>(left.count(), longest)));
    if (ready > 0) {
      return true;
    }
    if (ready < 0 && errno != EINTR) {
      return false;
    }
  }
}

/// Everything up to the end of the pipe; none where the time ends first or it is more than may be.
std::optional<std::string> readAll(int pipe, std::size_t limit, Clock::time_point deadline) {
  std::string output;
  std::array<char, 16 * 1024> buffer{};
  while (waitUntil(pipe, deadline)) {
    const ssize_t count = ::read(pipe, buffer.data(), buffer.size());
    if (count == 0) {
      return output;
    }
    if (count < 0 && errno != EINTR && errno != EAGAIN) {
      return std::nullopt;
    }
    output.append(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    if (output.size() > limit) {
      return std::nullopt;
    }
  }
  return std::nullopt;
}

int exitStatus(int waited) { return WIFEXITED(waited) ? WEXITSTATUS(waited) : -1; }

/// The child's exit status, or none where it still runs at the deadline.
std::optional<int> waitForEnd(pid_t child, Clock::time_point deadline) {
  const Descriptor process(static_cast<int>(::syscall(SYS_pidfd_open, child, 0)));
  if (process) {
    waitUntil(process.number(), deadline);
  }
  int waited = 0;
  const pid_t ended = ::waitpid(child, &waited, process ? WNOHANG : 0);
  return ended == child ? std::optional(exitStatus(waited)) : std::nullopt;
}

}  // namespace

std::optional<ToolOutput> LinuxToolRunner::run(const ToolCommand& command) const {
  reapEarlierTools();
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
    return std::nullopt;
  }
  Descriptor reading(ends[0]);
  Descriptor writing(ends[1]);
  const Clock::time_point deadline = Clock::now() + command.timeLimit;
  const std::optional<pid_t> child = SpawnPlan(writing.number(), Language::plainEnglish).start(command);
  if (!child) {
    return std::nullopt;
  }
  writing = Descriptor();
  std::optional<std::string> output = readAll(reading.number(), command.outputLimit, deadline);
  std::optional<int> status = output ? waitForEnd(*child, deadline) : std::nullopt;
  if (status) {
    return ToolOutput{.status = *status, .output = std::move(*output)};
  }
  ::kill(-*child, SIGTERM);
  reading = Descriptor();
  if (!waitForEnd(*child, Clock::now() + patience)) {
    const std::lock_guard guard(lock_);
    leftAlone_.push_back(*child);
  }
  return std::nullopt;
}

bool LinuxToolRunner::start(const ToolCommand& command) const {
  const Descriptor nowhere(::open("/dev/null", O_WRONLY | O_CLOEXEC));
  if (!nowhere || ::access(command.path.c_str(), X_OK) != 0) {
    return false;
  }
  // A child of a child that has ended is nobody's to wait for.
  ToolCommand parent{.path = "/usr/bin/setsid", .arguments = {"--fork", command.path}};
  parent.arguments.insert(parent.arguments.end(), command.arguments.begin(), command.arguments.end());
  const std::optional<pid_t> child = SpawnPlan(nowhere.number(), Language::asTheyAre).start(parent);
  return child && waitForEnd(*child, Clock::now() + parent.timeLimit) == 0;
}

void LinuxToolRunner::reapEarlierTools() const {
  const std::lock_guard guard(lock_);
  std::erase_if(leftAlone_, [](pid_t child) { return ::waitpid(child, nullptr, WNOHANG) != 0; });
}

}  // namespace lumenary
