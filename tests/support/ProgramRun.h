#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/Descriptor.h"

namespace lumenary {

/// How a run of the real program ended, and what it printed.
struct ProgramRun {
  int waitStatus = 0;
  std::string output;
  std::string errors;

  bool exitedWith(int status) const;
  bool wasKilledBy(int signal) const;
};

/// Runs the program to its end in the given home folder, in an environment of the test's own. `prepare` runs in the new
/// process before.
ProgramRun runProgram(
    const std::string& home, const std::vector<std::string>& arguments, const std::function<void()>& prepare = [] {});

/// The program under a tracer, on a terminal of its own that shows its error output. Its output goes to a file.
class TracedProgram {
 public:
  TracedProgram(const std::string& home, const std::vector<std::string>& arguments);
  ~TracedProgram();
  TracedProgram(const TracedProgram&) = delete;
  TracedProgram& operator=(const TracedProgram&) = delete;

  /// False where this system allows no tracing.
  bool isTraced() const { return isTraced_; }

  /// What a stop of one of the threads was for.
  struct Stop {
    enum class Kind { threadMade, threadBegins, programEnds, programEnded, other } kind = Kind::other;
    pid_t thread = 0;
    pid_t made = 0;  ///< the new thread, where one was made
    int waitStatus = 0;
  };
  /// Waits for the next stop. The thread stays stopped until `resume`.
  Stop next();
  void resume(const Stop& stop);

  /// The files and libraries in the program's memory.
  std::string maps() const;
  std::string output() const;
  /// Blocks until the terminal shows `text`; returns all that came with it.
  std::string awaitOnTerminal(const std::string& text);
  /// All that the terminal still holds after the program has ended.
  std::string restOfTerminal();
  void pressControlC();
  /// Waits until a thread lets a signal through; false where it goes on blocking it.
  bool awaitUnblocked(pid_t thread, int signal) const;

 private:
  Descriptor terminal_;
  Descriptor output_;
  pid_t program_ = -1;
  bool isTraced_ = false;
  bool hasEnded_ = false;
};

}  // namespace lumenary
