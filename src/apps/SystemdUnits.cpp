#include "apps/SystemdUnits.h"

#include <algorithm>
#include <array>
#include <set>

#include "base/Path.h"

namespace lumenary {
namespace {

using Domain = BackgroundItem::Domain;

constexpr std::string_view nothing = "/dev/null";
constexpr std::array<std::string_view, 4> kinds = {"service", "timer", "path", "socket"};
constexpr std::size_t dropInLimit = 100;
constexpr int aliasLimit = 8;

bool isKnownKind(std::string_view name) {
  return isUnitName(name) && std::ranges::find(kinds, pathExtension(name)) != kinds.end();
}

std::string_view stem(std::string_view name) { return name.substr(0, name.rfind('.')); }

/// Cuts the ending off, where the text has it and more.
bool takeEnding(std::string_view& text, std::string_view ending) {
  if (text.size() <= ending.size() || !text.ends_with(ending)) {
    return false;
  }
  text.remove_suffix(ending.size());
  return true;
}

/// "sync@.service" for "sync@work.service"; empty for what isn't an instance.
std::string templateOf(std::string_view name) {
  if (unitInstance(name).empty()) {
    return {};
  }
  return std::string(name.substr(0, name.find('@') + 1)) + "." + std::string(pathExtension(name));
}

bool isTemplate(std::string_view name) { return stem(name).ends_with('@'); }

}  // namespace

std::string_view unitInstance(std::string_view name) {
  const std::string_view whole = stem(name);
  const std::size_t at = whole.find('@');
  return at == std::string_view::npos ? std::string_view() : whole.substr(at + 1);
}

bool SystemdUnit::isTrigger() const { return pathExtension(name) != "service"; }

std::string SystemdUnit::triggered() const {
  const std::string_view kind = pathExtension(name);
  std::string named;
  if (kind == "timer") {
    named = settings.value("Timer", "Unit");
  } else if (kind == "path") {
    named = settings.value("Path", "Unit");
  } else if (kind == "socket") {
    named = settings.value("Socket", "Service");
  }
  if (!isTrigger() || (named.empty() && settings.value("Socket", "Accept") == "yes")) {
    return {};
  }
  return isUnitName(named) ? named : std::string(stem(name)) + ".service";
}

SystemdUnits::SystemdUnits(const FileReader& reader, DurableFiles& files, const std::vector<StartupFolder>& folders)
    : reader_(reader), files_(files) {
  for (const StartupFolder& folder : folders) {
    readFolder(folder);
  }
  for (const auto& [link, path] : links_) {
    if (!path.empty()) {
      starts_[withoutAlias(link.second)].push_back({.starter = link.first, .link = path});
    }
  }
}

void SystemdUnits::readFolder(const StartupFolder& folder) {
  for (const std::string& name : files_.names(folder.path).value_or(std::vector<std::string>())) {
    std::string_view unit = name;
    if (takeEnding(unit, ".wants") || takeEnding(unit, ".requires")) {
      readLinks(std::string(unit), appendingPathComponent(folder.path, name));
    } else if (takeEnding(unit, ".d") && isKnownKind(unit)) {
      const std::string dropIns = appendingPathComponent(folder.path, name);
      for (const std::string& file : files_.names(dropIns).value_or(std::vector<std::string>())) {
        if (file.ends_with(".conf")) {
          dropIns_[std::string(unit)].emplace(file, appendingPathComponent(dropIns, file));
        }
      }
    } else if (isKnownKind(name)) {
      readUnit(name, folder);
    }
  }
}

void SystemdUnits::readUnit(const std::string& name, const StartupFolder& folder) {
  const std::string path = appendingPathComponent(folder.path, name);
  const auto attributes = reader_.attributes(path, LinkPolicy::refuse);
  if (!attributes) {
    return;
  }
  bool isMask = attributes->identity.kind == FileKind::file && attributes->length == 0;
  if (attributes->identity.kind == FileKind::link) {
    const auto real = reader_.realPath(path);
    if (!real) {
      return;  // what it led to is gone: systemd knows no such unit
    }
    const std::string_view target = lastPathComponent(*real);
    if (*real != nothing && target != name && isKnownKind(target)) {
      aliases_.emplace(name, target);
      return;
    }
    isMask = *real == nothing;
  } else if (attributes->identity.kind != FileKind::file) {
    return;
  }
  units_[name].push_back({.path = path, .domain = folder.domain, .isMask = isMask});
}

void SystemdUnits::readLinks(const std::string& starter, const std::string& folder) {
  for (const std::string& name : files_.names(folder).value_or(std::vector<std::string>())) {
    if (!isKnownKind(name)) {
      continue;
    }
    std::string path = appendingPathComponent(folder, name);
    const bool isMask = reader_.realPath(path).value_or("") == nothing;
    links_.emplace(std::pair(starter, name), isMask ? "" : std::move(path));
  }
}

std::string SystemdUnits::withoutAlias(std::string name) const {
  for (int step = 0; step < aliasLimit; ++step) {
    const auto alias = aliases_.find(name);
    if (alias == aliases_.end() || units_.contains(name)) {
      break;
    }
    name = alias->second;
  }
  return name;
}

void SystemdUnits::readSettings(SystemdUnit& unit, const std::string& path) const {
  unit.settings.read(files_.read(path, UnitFile::byteLimit).value_or(""));
  std::map<std::string, std::string> laidOver;
  for (const std::string& name : {unit.name, templateOf(unit.name)}) {
    if (const auto found = dropIns_.find(name); found != dropIns_.end()) {
      laidOver.insert(found->second.begin(), found->second.end());
    }
  }
  std::size_t count = 0;
  for (const auto& [name, file] : laidOver) {
    if (++count > dropInLimit) {
      break;
    }
    unit.settings.read(files_.read(file, UnitFile::byteLimit).value_or(""));
  }
}

std::optional<SystemdUnit> SystemdUnits::find(const std::string& name) const {
  auto found = units_.find(name);
  const bool isOfTemplate = found == units_.end();
  if (isOfTemplate) {
    found = units_.find(templateOf(name));
  }
  if (found == units_.end()) {
    return std::nullopt;
  }
  const std::vector<File>& standing = found->second;
  const auto unmasked = std::ranges::find(standing, false, &File::isMask);
  const File& file = unmasked == standing.end() ? standing.front() : *unmasked;
  SystemdUnit unit{.name = name, .path = file.path, .domain = file.domain, .isMasked = standing.front().isMask};
  const auto isInstalled = [](const File& each) { return each.domain != Domain::user; };
  if (const auto installed = std::ranges::find_if(standing, isInstalled); installed != standing.end()) {
    unit.domain = installed->domain;
  }
  if (const auto starts = starts_.find(name); starts != starts_.end()) {
    for (const Start& start : starts->second) {
      unit.startedBy.push_back(start.starter);
    }
    unit.path = isOfTemplate ? starts->second.front().link : unit.path;
  }
  if (!file.isMask) {
    readSettings(unit, file.path);
  }
  return unit;
}

std::vector<SystemdUnit> SystemdUnits::starting() const {
  std::set<std::string> names;
  for (const auto& [name, starts] : starts_) {
    names.insert(name);
  }
  for (const auto& [name, standing] : units_) {
    const bool isOwn = std::ranges::find(standing, Domain::user, &File::domain) != standing.end();
    if (isOwn) {
      names.insert(name);
    }
  }
  std::vector<SystemdUnit> units;
  std::set<std::string> triggered;
  for (const std::string& name : names) {
    auto unit = isTemplate(name) ? std::nullopt : find(name);
    if (unit) {
      triggered.insert(withoutAlias(unit->triggered()));
      units.push_back(*std::move(unit));
    }
  }
  std::erase_if(units, [&](const SystemdUnit& unit) { return !unit.isEnabled() && triggered.contains(unit.name); });
  return units;
}

}  // namespace lumenary
