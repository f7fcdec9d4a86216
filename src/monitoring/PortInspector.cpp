#include "monitoring/PortInspector.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <map>
#include <set>
#include <tuple>
#include <utility>

#include "base/Path.h"
#include "base/Text.h"

namespace lumenary {
namespace {

constexpr std::array projectMarkers = std::to_array<std::string_view>(
    {"package.json", ".git", "Package.swift", "pyproject.toml", "requirements.txt", "Cargo.toml", "go.mod", "Gemfile",
     "pom.xml", "build.gradle", "composer.json", "deno.json", "wrangler.toml"});

constexpr std::array interpreters = std::to_array<std::string_view>(
    {"node", "python", "python3", "ruby", "bun", "deno", "java", "php", "npx", "sh", "bash", "zsh"});

constexpr std::chrono::seconds longestUnlooked{30};
constexpr std::size_t argumentBytes = std::size_t{4} * 1024;
constexpr std::size_t wordsShown = 4;
constexpr std::size_t longestCommand = 48;  ///< characters

bool isDropped(std::string_view word) {
  return std::ranges::find(interpreters, word) != interpreters.end() || word.starts_with("python") || word == "-m" ||
         word.starts_with("--");
}

bool hasHiddenComponent(std::string_view path) { return path.contains("/."); }

/// The first characters of a UTF-8 text, and how many characters it has.
std::pair<std::string_view, std::size_t> firstCharacters(std::string_view text, std::size_t count) {
  std::size_t characters = 0;
  std::size_t cut = text.size();
  for (std::size_t at = 0; at < text.size(); at += std::max<std::size_t>(utf8SequenceLength(text.substr(at)), 1)) {
    if (characters == count) {
      cut = at;
    }
    ++characters;
  }
  return {text.substr(0, cut), characters};
}

std::string addressText(const std::string& address) {
  return address.empty() || address == "0.0.0.0" || address == "::" ? "*" : address;
}

}  // namespace

bool PortEntry::isDevServer() const {
  return projectRoot && std::ranges::find(systemPorts, port) == systemPorts.end() &&
         std::ranges::find(backgroundTools, loweredASCII(processName)) == backgroundTools.end();
}

PortInspector::PortInspector(const SocketReader& sockets, const ProcessReader& processes, const FileReader& files,
                             const std::string& home)
    // A process's folder is told with all links resolved.
    : sockets_(sockets), processes_(processes), files_(files), home_(files.realPath(home).value_or(home)) {}

std::vector<PortEntry> PortInspector::inspect() const { return look().ports; }

std::vector<PortEntry> PortInspector::listeningPorts(Date now) {
  const std::lock_guard guard(lock_);
  const bool isFresh = last_ && now >= lastAt_ && now - lastAt_ < longestUnlooked;
  if (!isFresh || sockets_.listening() != last_->sockets || !sockets_.areStillHeld(last_->holders)) {
    last_ = look();
    lastAt_ = now;
  }
  return last_->ports;
}

PortInspector::Look PortInspector::look() const {
  std::vector<ListeningSocket> sockets = sockets_.listening();
  std::vector<SocketHolder> holders = sockets_.holders(sockets);
  std::multimap<std::uint64_t, std::int32_t> holdersOf;
  for (const SocketHolder& holder : holders) {
    holdersOf.emplace(holder.number, holder.pid);
  }
  std::vector<PortEntry> ports;
  std::set<std::tuple<std::int32_t, std::string, std::string, std::int64_t>> seen;
  std::map<std::int32_t, ProcessDetails> detailsOf;
  ProjectCache projectCache;
  for (const ListeningSocket& socket : sockets) {
    PortEntry entry;
    entry.protocolName = socket.protocol == SocketProtocol::tcp ? "TCP" : "UDP";
    entry.address = addressText(socket.address);
    entry.port = socket.port;
    const auto add = [&](std::int32_t pid, const ProcessDetails& details) {
      if (!seen.emplace(pid, entry.protocolName, entry.address, entry.port).second) {
        return;
      }
      entry.pid = pid;
      entry.processName = details.name;
      entry.projectRoot = details.projectRoot;
      entry.command = details.command;
      entry.startedAt = details.startedAt;
      entry.ownerUID = details.ownerUID;
      ports.push_back(entry);
    };
    const auto [begin, end] = holdersOf.equal_range(socket.number);
    for (auto holder = begin; holder != end; ++holder) {
      const auto [details, isNew] = detailsOf.try_emplace(holder->second);
      if (isNew) {
        details->second = processDetails(holder->second, projectCache);
      }
      add(holder->second, details->second);
    }
    if (begin == end) {
      add(0, {.name = "Unknown process", .ownerUID = socket.uid});
    }
  }
  std::ranges::sort(ports, {}, [](const PortEntry& entry) {
    return std::tie(entry.port, entry.protocolName, entry.processName, entry.pid, entry.address);
  });
  return {.sockets = std::move(sockets), .holders = std::move(holders), .ports = std::move(ports)};
}

PortInspector::ProcessDetails PortInspector::processDetails(std::int32_t pid, ProjectCache& projectCache) const {
  ProcessDetails details;
  details.name = "PID " + std::to_string(pid);
  if (const auto process = processes_.namedRecord(pid)) {
    details.name = process->name.empty() ? details.name : displayText(process->name);
    details.startedAt = process->record.startedAt;
    details.ownerUID = process->record.uid;
  }
  if (const auto folder = processes_.workingFolder(pid)) {
    const auto [project, isNew] = projectCache.try_emplace(*folder);
    if (isNew) {
      project->second = projectRoot(*folder);
    }
    details.projectRoot = project->second;
  }
  details.command = shortCommand(processes_.arguments(pid, argumentBytes));
  return details;
}

std::optional<std::string> PortInspector::projectRoot(std::string_view path) const {
  if (home_.empty() || path == home_ || !isSameOrInside(path, home_)) {
    return std::nullopt;
  }
  const std::string_view below = path.substr(home_.size());
  if (below.starts_with("/Library/") || below.starts_with("/.Trash/") || hasHiddenComponent(below)) {
    return std::nullopt;
  }
  for (std::string_view folder = path; folder.size() > home_.size(); folder = parentPath(folder)) {
    const bool isProject = std::ranges::any_of(
        projectMarkers, [&](std::string_view marker) { return files_.exists(appendingPathComponent(folder, marker)); });
    if (isProject) {
      return std::string(folder);
    }
  }
  return std::string(path);
}

std::optional<std::string> PortInspector::shortCommand(std::span<const std::string> arguments) {
  std::vector<std::string> words;
  for (const std::string& argument : arguments) {
    words.push_back(displayText(lastPathComponent(argument)));
  }
  std::span<const std::string> kept(words);
  while (kept.size() > 1 && isDropped(kept.front())) {
    kept = kept.subspan(1);
  }
  std::string command;
  for (const std::string& word : kept.first(std::min(kept.size(), wordsShown))) {
    command += (&word == &kept.front() ? "" : " ") + word;
  }
  if (command.empty()) {
    return std::nullopt;
  }
  const auto [shortened, characters] = firstCharacters(command, longestCommand - 1);
  return characters > longestCommand ? std::string(shortened) + "…" : command;
}

}  // namespace lumenary
