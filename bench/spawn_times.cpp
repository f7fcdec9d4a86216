// spawn_times ROUNDS COMMAND [ARGUMENT…] [-- COMMAND [ARGUMENT…]]…
//
// Runs the commands in turn, each round beginning with the next of them, so that none always runs in the wake of the
// same one. They read nothing and their output goes nowhere. For each run a line is printed: the number of the command,
// then wall time and processor time (user and system) in nanoseconds, peak resident memory in KiB, and the exit status.
//
// A small program does this and not a script, because the kernel counts what the process held before it turned into
// the command towards the command's peak, and because starting a process out of a large one takes longer.

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <vector>

namespace {

using Command = std::vector<char*>;  ///< ends with a null pointer, as the kernel wants it

std::vector<Command> commandsFrom(char** words, char** end) {
  std::vector<Command> commands(1);
  for (; words < end; ++words) {
    if (std::string_view(*words) == "--") {
      commands.emplace_back();
    } else {
      commands.back().push_back(*words);
    }
  }
  for (Command& command : commands) {
    if (command.empty()) {
      std::fputs("A command is missing.\n", stderr);
      std::exit(2);
    }
    command.push_back(nullptr);
  }
  return commands;
}

std::int64_t nanoseconds(const timeval& time) {
  return std::int64_t{time.tv_sec} * 1'000'000'000 + std::int64_t{time.tv_usec} * 1'000;
}

void runOnce(std::size_t index, const Command& command, const posix_spawn_file_actions_t& quietly) {
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  pid_t process = 0;
  if (const int error = ::posix_spawnp(&process, command[0], &quietly, nullptr, command.data(), ::environ);
      error != 0) {
    std::fprintf(stderr, "%s: %s\n", command[0], std::strerror(error));
    std::exit(1);
  }
  int status = 0;
  rusage usage{};
  ::wait4(process, &status, 0, &usage);
  const std::int64_t wall = std::chrono::nanoseconds(Clock::now() - start).count();
  std::printf("%zu %lld %lld %ld %d\n", index, static_cast<long long>(wall),
              static_cast<long long>(nanoseconds(usage.ru_utime) + nanoseconds(usage.ru_stime)), usage.ru_maxrss,
              WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status));
}

}  // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount < 3) {
    std::fputs("Usage: spawn_times ROUNDS COMMAND [ARGUMENT…] [-- COMMAND [ARGUMENT…]]…\n", stderr);
    return 2;
  }
  const std::size_t rounds = std::strtoul(arguments[1], nullptr, 10);
  const std::vector<Command> commands = commandsFrom(arguments + 2, arguments + argumentCount);

  posix_spawn_file_actions_t quietly;
  ::posix_spawn_file_actions_init(&quietly);
  for (int number = 0; number <= 2; ++number) {
    ::posix_spawn_file_actions_addopen(&quietly, number, "/dev/null", O_RDWR, 0);
  }
  for (std::size_t round = 0; round < rounds; ++round) {
    for (std::size_t turn = 0; turn < commands.size(); ++turn) {
      const std::size_t index = (round + turn) % commands.size();
      runOnce(index, commands[index], quietly);
    }
  }
  ::posix_spawn_file_actions_destroy(&quietly);
}
