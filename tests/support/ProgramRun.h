#pragma once

#include <functional>
#include <string>
#include <vector>

namespace lumenary {

/// How a run of the real program ended, and what it printed.
struct ProgramRun {
  int waitStatus = 0;
  std::string output;
  std::string errors;

  bool exitedWith(int status) const;
};

/// Runs the program to its end in the given home folder, in an environment of the test's own and these variables.
/// `prepare` runs in the new process before.
ProgramRun runProgram(
    const std::string& home, const std::vector<std::string>& arguments, const std::vector<std::string>& variables = {},
    const std::function<void()>& prepare = [] {});

}  // namespace lumenary
