#include "support/ProgramRun.h"

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>

#include "platform/Descriptor.h"

namespace lumenary {
namespace {

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  return pointers;
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

}  // namespace

bool ProgramRun::exitedWith(int status) const { return WIFEXITED(waitStatus) && WEXITSTATUS(waitStatus) == status; }

ProgramRun runProgram(const std::string& home, const std::vector<std::string>& arguments,
                      const std::vector<std::string>& variables, const std::function<void()>& prepare) {
  const Descriptor output(::memfd_create("output", MFD_CLOEXEC));
  const Descriptor errors(::memfd_create("errors", MFD_CLOEXEC));
  std::vector<std::string> words = {LUMENARY_EXECUTABLE};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<std::string> environment = {"HOME=" + home, "TZ=UTC0"};
  environment.insert(environment.end(), variables.begin(), variables.end());
  const pid_t program = ::fork();
  if (program == 0) {
    ::dup2(output.number(), STDOUT_FILENO);
    ::dup2(errors.number(), STDERR_FILENO);
    prepare();
    ::execve(LUMENARY_EXECUTABLE, pointersTo(words).data(), pointersTo(environment).data());
    ::_exit(126);
  }
  ProgramRun run;
  ::waitpid(program, &run.waitStatus, 0);
  run.output = allOf(output);
  run.errors = allOf(errors);
  return run;
}

}  // namespace lumenary
