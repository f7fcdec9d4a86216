#include "platform/linux/ProcessFiles.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "platform/linux/ProcText.h"

namespace lumenary {
namespace {

constexpr std::uint64_t kernelThreadFlag = 0x00200000;  // PF_KTHREAD
constexpr std::uint64_t kibibyte = 1024;

void skipWords(std::string_view& text, int count) {
  for (int word = 0; word < count; ++word) {
    takeWord(text);
  }
}

/// "\x2d" is a byte that may not stand in the name of a unit.
std::string unescapedUnitName(std::string_view name) {
  std::string text;
  while (!name.empty()) {
    unsigned byte = 0;
    if (name.starts_with("\\x") && name.size() >= 4 &&
        std::from_chars(name.data() + 2, name.data() + 4, byte, 16).ptr == name.data() + 4) {
      text += static_cast<char>(byte);
      name.remove_prefix(4);
    } else {
      text += name.front();
      name.remove_prefix(1);
    }
  }
  return text;
}

/// By the convention for the units of desktop apps: app[-LAUNCHER]-ID-RANDOM.scope, app[-LAUNCHER]-ID[@RANDOM].service,
/// where no part holds a plain "-".
std::string appIDOfUnit(std::string_view unit) {
  const std::size_t dot = unit.rfind('.');
  const std::string_view type = dot == std::string_view::npos ? std::string_view() : unit.substr(dot);
  std::string_view name = unit.substr(0, dot);
  if (name.starts_with("snap.")) {
    name.remove_prefix(std::string_view("snap.").size());
    return std::string(name.substr(0, name.find('.')));
  }
  const bool isApp = name.starts_with("app-") || name.starts_with("dbus-");
  if (!isApp || (type != ".scope" && type != ".service")) {
    return {};
  }
  name = name.substr(0, type == ".scope" ? name.rfind('-') : name.find('@'));
  const std::size_t last = name.rfind('-');
  return last == std::string_view::npos ? std::string() : unescapedUnitName(name.substr(last + 1));
}

}  // namespace

bool ProcessStat::isKernelThread() const { return (flags & kernelThreadFlag) != 0; }

std::optional<ProcessStat> parseProcessStat(std::string_view text) {
  const std::size_t open = text.find('(');
  const std::size_t close = text.rfind(')');
  if (open == std::string_view::npos || close == std::string_view::npos || close < open) {
    return std::nullopt;
  }
  ProcessStat stat;
  stat.name = text.substr(open + 1, close - open - 1);
  text.remove_prefix(close + 1);
  const std::string_view state = takeWord(text);
  stat.state = state.empty() ? '\0' : state.front();
  stat.parent = takeNumber<std::int32_t>(text);
  skipWords(text, 4);
  stat.flags = takeNumber(text);
  stat.faults = takeNumber(text);
  skipWords(text, 1);
  stat.faults += takeNumber(text);
  skipWords(text, 1);
  stat.cpuTicks = takeNumber(text);
  stat.cpuTicks += takeNumber(text);
  skipWords(text, 6);
  stat.startTicks = takeNumber(text);
  stat.virtualBytes = takeNumber(text);
  const std::string_view resident = takeWord(text);
  stat.residentPages = numberAtFront(resident);
  return resident.empty() ? std::nullopt : std::optional(stat);
}

std::optional<ProcessStatus> parseProcessStatus(std::string_view text) {
  ProcessStatus status;
  bool hasUser = false;
  while (!text.empty()) {
    std::string_view line = takeLine(text);
    const std::string_view name = takeWord(line);
    if (name == "Uid:") {
      skipWords(line, 1);
      status.uid = takeNumber<std::uint32_t>(line);
      hasUser = true;
    } else if (name == "RssAnon:" || name == "RssShmem:" || name == "VmSwap:") {
      status.footprintBytes += takeNumber(line) * kibibyte;
    }
  }
  return hasUser ? std::optional(status) : std::nullopt;
}

std::vector<std::string> parseArguments(std::string_view text) {
  std::vector<std::string> arguments;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\0'), text.size());
    arguments.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return arguments;
}

std::string appIDOfControlGroup(std::string_view text) {
  while (!text.empty()) {
    std::string_view path = takeLine(text);
    while (!path.empty()) {
      const std::size_t slash = path.rfind('/');
      std::string id = slash == std::string_view::npos ? std::string() : appIDOfUnit(path.substr(slash + 1));
      if (!id.empty()) {
        return id;
      }
      path = path.substr(0, slash == std::string_view::npos ? 0 : slash);
    }
  }
  return {};
}

}  // namespace lumenary
