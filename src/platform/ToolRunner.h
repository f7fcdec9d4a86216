#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace lumenary {

/// A program to run with an argument vector; no shell reads it.
struct ToolCommand {
  std::string path;                    ///< absolute
  std::vector<std::string> arguments;  ///< without the program's own name
  std::chrono::milliseconds timeLimit = std::chrono::seconds(10);
  std::size_t outputLimit = std::size_t{8} * 1024 * 1024;  ///< bytes of standard output
};

struct ToolOutput {
  int status = 0;        ///< what it exited with; -1 where a signal ended it
  std::string output{};  ///< what it wrote to standard output, any bytes

  bool operator==(const ToolOutput&) const = default;
};

/// Runs the small tools of the system. Blocks until the tool ends; from any thread.
class ToolRunner {
 public:
  virtual ~ToolRunner() = default;
  /// Runs the tool to its end, with nothing to read, its errors thrown away and its language set to plain English. None
  /// where it can't be started, says more than it may, or is still running at its time limit: then it is asked to end.
  virtual std::optional<ToolOutput> run(const ToolCommand& command) const = 0;
  /// Starts a program that goes on by itself, and outlives this one, with nothing to read and nobody to hear it. False
  /// where it can't be started; the limits don't count.
  virtual bool start(const ToolCommand& command) const = 0;
};

/// What a tool wrote, whatever it exited with. None where `run` gives none or the bytes aren't UTF-8.
std::optional<std::string> toolText(const ToolRunner& tools, const ToolCommand& command);

}  // namespace lumenary
