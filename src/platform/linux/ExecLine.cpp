#include "platform/linux/ExecLine.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "base/Path.h"
#include "platform/linux/DesktopEntry.h"

namespace lumenary {
namespace {

constexpr std::size_t byteLimit = std::size_t{64} * 1024;
constexpr std::string_view snapPrograms = "/snap/bin/";

constexpr auto interpreters = std::to_array<std::string_view>(
    {"ash",  "bash", "bwrap", "cmd",  "dash",   "dbus-send", "dotnet",   "electron", "exo-open", "gjs",
     "java", "ksh",  "lua",   "mono", "node",   "perl",      "php",      "pypy",     "python",   "qml",
     "ruby", "sh",   "tclsh", "wine", "wine64", "wish",      "xdg-open", "zsh"});

/// They take a command line behind their own name, and no options with a value.
constexpr auto wrappers = std::to_array<std::string_view>(
    {"nohup", "setsid", "prime-run", "gamemoderun", "pkexec", "dbus-run-session", "exec"});

using Words = std::vector<std::string>;
using Word = Words::const_iterator;

bool isVariable(std::string_view word) {
  const std::size_t equals = word.find('=');
  return equals != 0 && equals != std::string_view::npos && word.find('/') > equals;
}

/// Behind the options of `env` and the variables that it sets.
Word behindEnv(Word at, Word end) {
  while (at != end) {
    const bool takesNext = *at == "-u" || *at == "-C" || *at == "--unset" || *at == "--chdir";
    if (!at->starts_with('-') && !isVariable(*at)) {
      return at;
    }
    ++at;
    at += takesNext && at != end ? 1 : 0;
  }
  return at;
}

Word behindOptions(Word at, Word end) {
  return std::find_if(at, end, [](const std::string& word) { return !word.starts_with('-'); });
}

bool isForGuest(const std::string& word) {
  return word.starts_with("--app-id=") || word.starts_with("--app=") || word.contains("://");
}

StartedProgram startedByFlatpak(Word at, Word end) {
  constexpr std::string_view commandOption = "--command=";
  StartedProgram program;
  const Word id = behindOptions(at, end);
  if (id == end) {
    return program;
  }
  program.flatpakID = *id;
  for (; at != id; ++at) {
    if (at->starts_with(commandOption)) {
      program.name = at->substr(commandOption.size());
    }
  }
  return program;
}

std::string snapOf(std::string_view program) { return std::string(program.substr(0, program.find('.'))); }

}  // namespace

std::optional<std::vector<std::string>> parseExecLine(std::string_view value) {
  if (value.size() > byteLimit) {
    return std::nullopt;
  }
  const std::string line = desktopEntryText(value);
  Words words;
  std::string word;
  bool isQuoted = false;
  bool isWord = false;  // a quoted empty word is one, a field code alone is none
  const auto endWord = [&] {
    if (isWord) {
      words.push_back(std::move(word));
    }
    word.clear();
    isWord = false;
  };
  for (std::size_t at = 0; at < line.size(); ++at) {
    const char byte = line[at];
    const bool hasNext = at + 1 < line.size();
    if (byte == '"') {
      isQuoted = !isQuoted;
      isWord = true;
    } else if (!isQuoted && (byte == ' ' || byte == '\t' || byte == '\n')) {
      endWord();
    } else if (byte == '\\' && hasNext && (!isQuoted || std::string_view("\"`$\\").contains(line[at + 1]))) {
      word += line[++at];
      isWord = true;
    } else if (byte == '%' && hasNext) {
      if (line[++at] == '%') {
        word += '%';
        isWord = true;
      }
    } else {
      word += byte;
      isWord = true;
    }
  }
  endWord();
  return isQuoted || words.empty() ? std::nullopt : std::optional(std::move(words));
}

StartedProgram startedProgram(const std::vector<std::string>& words) {
  const Word end = words.end();
  for (Word at = words.begin(); at != end;) {
    const std::string_view name = lastPathComponent(*at);
    if (name == "env") {
      at = behindEnv(at + 1, end);
      continue;
    }
    if (std::ranges::find(wrappers, name) != wrappers.end()) {
      at = behindOptions(at + 1, end);
      continue;
    }
    const Word next = at + 1;
    if ((name == "flatpak" || name == "snap") && next != end && *next == "run") {
      if (name == "flatpak") {
        return startedByFlatpak(next + 1, end);
      }
      const Word snap = behindOptions(next + 1, end);
      return {.name = {}, .flatpakID = {}, .snap = snap == end ? std::string() : snapOf(*snap)};
    }
    StartedProgram program{.name = *at, .flatpakID = {}, .snap = {}, .isGuest = std::any_of(next, end, isForGuest)};
    if (at->starts_with(snapPrograms)) {
      program.snap = snapOf(name);
    }
    return program;
  }
  return {};
}

bool isInterpreter(std::string_view programName) {
  // "python3.11" is python, and so on.
  const std::string_view plain = programName.substr(0, programName.find_last_not_of("0123456789.-") + 1);
  const auto isOne = [](std::string_view name) { return std::ranges::find(interpreters, name) != interpreters.end(); };
  return isOne(programName) || isOne(plain);
}

}  // namespace lumenary
