#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/ToolRunner.h"

namespace lumenary {

/// Tools that answer with captured text. A command is told by its path and arguments with blanks between them; a tool
/// without an answer can't be started.
class FakeTools final : public ToolRunner {
 public:
  std::map<std::string, std::string> answers;
  mutable std::vector<std::string> calls;

  std::optional<ToolOutput> run(const ToolCommand& command) const override {
    std::string line = command.path;
    for (const std::string& argument : command.arguments) {
      line += " " + argument;
    }
    calls.push_back(line);
    const auto answer = answers.find(line);
    return answer == answers.end() ? std::nullopt : std::optional(ToolOutput{.output = answer->second});
  }
};

}  // namespace lumenary
