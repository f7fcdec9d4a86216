#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/ToolRunner.h"

namespace lumenary {

/// Answers of tools by their command line. A command without an answer doesn't end in time.
class FakeTools final : public ToolRunner {
 public:
  std::map<std::string, ToolOutput> answers{};  ///< by path and arguments, joined by blanks
  mutable std::vector<std::string> calls{};

  std::optional<ToolOutput> run(const ToolCommand& command) const override {
    const auto answer = answers.find(calls.emplace_back(line(command)));
    return answer == answers.end() ? std::nullopt : std::optional(answer->second);
  }
  bool start(const ToolCommand& command) const override {
    calls.push_back("start " + line(command));
    return true;
  }

 private:
  static std::string line(const ToolCommand& command) {
    std::string text = command.path;
    for (const std::string& argument : command.arguments) {
      text += " " + argument;
    }
    return text;
  }
};

}  // namespace lumenary
