#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The "Exec" key of desktop entries, by the Desktop Entry Specification.
namespace lumenary {

/// The words of a value as it stands in the file: escapes and quotes are read, field codes (%f, %U, …) left out. None
/// for a quote that doesn't end, for a value without a word, and for one longer than any command line is.
std::optional<std::vector<std::string>> parseExecLine(std::string_view value);

/// What a command line starts, with `env` and its like seen through.
struct StartedProgram {
  std::string name;       ///< as it is written: a path or a name; empty where nothing is started
  std::string flatpakID;  ///< of "flatpak run …"; then `name` is the command inside, if it is told
  std::string snap;       ///< of "snap run …" and "/snap/bin/…"
  bool isGuest = false;   ///< something inside another app: a web page as an app, a game of a game store

  bool operator==(const StartedProgram&) const = default;
};

StartedProgram startedProgram(const std::vector<std::string>& words);

/// True for what runs programs written for it, and by whose name no app can be told: "python3", "bash", "java".
bool isInterpreter(std::string_view programName);

}  // namespace lumenary
