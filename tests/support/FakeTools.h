#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/ToolRunner.h"

namespace lumenary {

/// Tools that answer with captured text. A command is told by its path and arguments with blanks between them; a tool
/// without an answer can't be started, or hangs.
class FakeTools final : public ToolRunner {
 public:
  std::map<std::string, std::string> answers{};
  std::map<std::string, int> statuses{};  ///< 0 unless told
  mutable std::vector<std::string> calls{};

  std::optional<ToolOutput> run(const ToolCommand& command) const override {
    const std::string& line = calls.emplace_back(lineOf(command));
    const auto answer = answers.find(line);
    const auto status = statuses.find(line);
    return answer == answers.end()
               ? std::nullopt
               : std::optional(ToolOutput{status == statuses.end() ? 0 : status->second, answer->second});
  }
  bool start(const ToolCommand& command) const override {
    calls.push_back("start " + lineOf(command));
    return true;
  }

 private:
  static std::string lineOf(const ToolCommand& command) {
    std::string line = command.path;
    for (const std::string& argument : command.arguments) {
      line += " " + argument;
    }
    return line;
  }
};

}  // namespace lumenary
