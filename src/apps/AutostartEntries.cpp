#include "apps/AutostartEntries.h"

#include <algorithm>
#include <utility>

#include "base/Path.h"
#include "base/Text.h"
#include "base/Unicode.h"
#include "platform/linux/DesktopEntry.h"

namespace lumenary {
namespace {

using Domain = BackgroundItem::Domain;
using Keys = std::map<std::string, std::string, std::less<>>;

constexpr std::string_view entryExtension = ".desktop";
constexpr std::string_view gnomeSwitch = "X-GNOME-Autostart-enabled";

std::string valueOf(const Keys& keys, std::string_view key) {
  const auto found = keys.find(key);
  return found == keys.end() ? "" : found->second;
}

/// Whether a list with semicolons names one of the desktops.
bool namesOneOf(std::string_view list, const std::vector<std::string>& desktops) {
  while (!list.empty()) {
    const std::size_t end = std::min(list.find(';'), list.size());
    if (std::ranges::find(desktops, trimmed(list.substr(0, end))) != desktops.end()) {
      return true;
    }
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  return false;
}

bool isForThisDesktop(const Keys& keys, const std::vector<std::string>& desktops) {
  if (desktops.empty()) {
    return true;  // outside of a desktop it can't be told
  }
  const auto only = keys.find("OnlyShowIn");
  return (only == keys.end() || namesOneOf(only->second, desktops)) &&
         !namesOneOf(valueOf(keys, "NotShowIn"), desktops);
}

bool isProgramThere(const FileReader& reader, const std::string& program, const std::vector<std::string>& folders) {
  if (program.contains('/')) {
    return reader.exists(program);
  }
  return std::ranges::any_of(
      folders, [&](const std::string& folder) { return reader.exists(appendingPathComponent(folder, program)); });
}

/// Where each entry stands, by file name, the nearest file first.
std::map<std::string, std::vector<StartupFolder>> entryFiles(DurableFiles& files,
                                                             const std::vector<StartupFolder>& folders) {
  std::map<std::string, std::vector<StartupFolder>> found;
  for (const StartupFolder& folder : folders) {
    for (const std::string& name : files.names(folder.path).value_or(std::vector<std::string>())) {
      if (name.ends_with(entryExtension) && name.size() > entryExtension.size()) {
        found[name].push_back({.path = appendingPathComponent(folder.path, name), .domain = folder.domain});
      }
    }
  }
  return found;
}

}  // namespace

std::vector<AutostartEntry> autostartEntries(const FileReader& reader, DurableFiles& files,
                                             const LinuxStartupPlaces& places) {
  const auto read = [&](const StartupFolder& file) {
    return parseDesktopEntry(files.read(file.path, autostartByteLimit).value_or(""));
  };
  std::vector<AutostartEntry> entries;
  for (const auto& [name, standing] : entryFiles(files, places.autostart)) {
    Keys keys = read(standing.front());
    const bool isSwitchedOff = valueOf(keys, "Hidden") == "true" || valueOf(keys, gnomeSwitch) == "false";
    const bool isOff = isSwitchedOff || !keys.contains("Exec");
    if (isOff && standing.size() > 1) {
      // A file that only hides another one tells nothing of it.
      keys.merge(read(standing[1]));
    }
    const auto program = execProgram(desktopEntryText(valueOf(keys, "Exec")));
    if (!program || !isForThisDesktop(keys, places.desktops)) {
      continue;
    }
    const Domain domain = standing.back().domain;
    const std::string needed = desktopEntryText(valueOf(keys, "TryExec"));
    const bool isGone = isProgramGone(reader, *program);
    const bool isTold = domain == Domain::user && isGone;
    if (!isTold && !needed.empty() && !isProgramThere(reader, needed, places.programFolders)) {
      continue;
    }
    entries.push_back({.path = standing.front().path,
                       .id = name.substr(0, name.size() - entryExtension.size()),
                       .domain = domain,
                       .isOff = isOff,
                       .program = program,
                       .name = displayText(desktopEntryText(valueOf(keys, "Name")))});
  }
  return entries;
}

std::optional<std::string> execProgram(std::string_view exec) {
  exec.remove_prefix(std::min(exec.find_first_not_of(" \t"), exec.size()));
  const bool isQuoted = exec.starts_with('"');
  if (!isQuoted) {
    const std::string_view word = exec.substr(0, exec.find_first_of(" \t"));
    return word.empty() ? std::nullopt : std::optional(std::string(word));
  }
  std::string word;
  for (std::size_t at = 1; at < exec.size() && exec[at] != '"'; ++at) {
    at += exec[at] == '\\' && at + 1 < exec.size() ? 1U : 0U;
    word += exec[at];
  }
  return word.empty() ? std::nullopt : std::optional(word);
}

std::optional<std::string> withAutostart(std::string_view text, bool isOn) {
  std::string changed;
  std::size_t headerEnd = 0;
  bool isInGroup = false;
  bool isSaid = false;  ///< the line that turns it off is written
  while (!text.empty()) {
    const std::size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
    const std::string_view line = text.substr(0, length);
    text.remove_prefix(length);
    const std::string_view content = trimmed(line);
    if (content.starts_with('[')) {
      isInGroup = content == "[Desktop Entry]";
    }
    const std::size_t equals = content.find('=');
    const std::string_view key = trimmed(content.substr(0, equals));
    const bool hasKey = isInGroup && equals != std::string_view::npos && !content.starts_with('#');
    const bool hides = hasKey && key == "Hidden";
    if (isOn && (hides || (hasKey && key == gnomeSwitch && trimmed(content.substr(equals + 1)) == "false"))) {
      continue;
    }
    if (hides && !isSaid) {
      changed += "Hidden=true\n";
      isSaid = true;
      continue;
    }
    changed += line;
    if (isInGroup && headerEnd == 0) {
      changed += changed.ends_with('\n') ? "" : "\n";
      headerEnd = changed.size();
    }
  }
  if (headerEnd == 0) {
    return std::nullopt;
  }
  if (!isOn && !isSaid) {
    changed.insert(headerEnd, "Hidden=true\n");
  }
  return changed;
}

}  // namespace lumenary
