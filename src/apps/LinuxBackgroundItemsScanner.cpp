#include "apps/LinuxBackgroundItemsScanner.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "apps/SystemdSchedule.h"
#include "base/Text.h"

namespace lumenary {
namespace {

/// The unit's name up to its instance and its kind: what apps are known by.
std::string_view unitLabel(std::string_view name) { return name.substr(0, std::min(name.find('@'), name.rfind('.'))); }

/// A unit that can be enabled, and isn't: one without such a section starts only for others.
bool canBeEnabled(const UnitFile& settings) {
  const auto has = [&](std::string_view key) { return !settings.value("Install", key).empty(); };
  return has("WantedBy") || has("RequiredBy") || has("Alias") || has("Also");
}

/// A service that has its program elsewhere, or that isn't started at all while the program isn't installed.
bool mayDoWithout(const UnitFile& service, const std::string& program) {
  const auto asks = [&](std::string_view key) {
    const std::vector<std::string> paths = service.values("Unit", key);
    return std::ranges::find(paths, program) != paths.end();
  };
  return !service.value("Service", "RootDirectory").empty() || !service.value("Service", "RootImage").empty() ||
         asks("ConditionFileIsExecutable") || asks("ConditionPathExists");
}

std::string textOr(std::string_view text, std::string otherwise) {
  std::string shown = displayText(text);
  return shown.empty() ? std::move(otherwise) : std::move(shown);
}

}  // namespace

std::string autostartUnit(std::string_view id) { return "app-" + unitNameEscaped(id) + "@autostart.service"; }

LinuxBackgroundItemsScanner::Found LinuxBackgroundItemsScanner::foundUnit(const SystemdUnit& unit,
                                                                          const SystemdUnits& units,
                                                                          bool isPersons) const {
  const UnitSpecifiers specifiers{.home = isPersons ? places_.home : "/root",
                                  .user = isPersons ? places_.userName : "root",
                                  .instance = std::string(unitInstance(unit.name))};
  const std::string triggered = unit.triggered();
  const auto service = triggered.empty() ? std::nullopt : units.find(triggered);
  const UnitFile& settings = service ? service->settings : unit.settings;
  Found found{.item = {.url = {.path = unit.path}, .label = unit.name, .domain = unit.domain}, .units = {unit.name}};
  if (!triggered.empty()) {
    found.units.push_back(triggered);
  }
  BackgroundItem& item = found.item;
  const std::vector<std::string> commands = settings.values("Service", "ExecStart");
  const auto program = commands.empty() ? std::nullopt : unitProgram(commands.front(), specifiers);
  if (program) {
    item.program = program->text;
    item.programExists =
        !program->isResolved || mayDoWithout(settings, program->text) || !isProgramGone(reader_, program->text);
  }
  const std::string_view label = unitLabel(unit.name);
  const UnitText description = resolvedUnitText(unit.settings.value("Unit", "Description"), specifiers);
  const auto known = knownBackgroundOwner(label, installedApps_);
  item.owner = known ? *known : textOr(description.text, backgroundOwnerOfLabel(label));
  item.schedule = systemdSchedule(unit, settings);
  item.isDisabled = unit.isMasked || (!unit.isEnabled() && canBeEnabled(unit.settings));
  return found;
}

std::vector<LinuxBackgroundItemsScanner::Found> LinuxBackgroundItemsScanner::foundUnits(const SystemdUnits& units,
                                                                                        bool isPersons) const {
  std::vector<Found> found;
  for (const SystemdUnit& unit : units.starting()) {
    found.push_back(foundUnit(unit, units, isPersons));
  }
  return found;
}

std::vector<LinuxBackgroundItemsScanner::Found> LinuxBackgroundItemsScanner::foundEntries() const {
  std::vector<Found> found;
  for (const AutostartEntry& entry : autostartEntries(reader_, files_, places_)) {
    BackgroundItem item{.url = {.path = entry.path},
                        .label = entry.id,
                        .domain = entry.domain,
                        .program = entry.program,
                        .schedule = schedulePhrase::atLogin,
                        .isDisabled = entry.isOff};
    item.programExists = !entry.program || !isProgramGone(reader_, *entry.program);
    const auto known = knownBackgroundOwner(entry.id, installedApps_);
    item.owner = known ? *known : textOr(entry.name, backgroundOwnerOfLabel(entry.id));
    found.push_back({.item = std::move(item), .units = {autostartUnit(entry.id)}});
  }
  return found;
}

void LinuxBackgroundItemsScanner::addStates(std::vector<Found>& found, bool isPersons) const {
  std::set<std::string> names;
  for (const Found& each : found) {
    names.insert(each.units.begin(), each.units.end());
  }
  const UnitStates states = askUnitStates(tools_, places_.systemctl, isPersons, names);
  for (Found& each : found) {
    for (const std::string& name : each.units) {
      const auto state = states.find(name);
      if (state == states.end()) {
        continue;
      }
      if (!each.item.pid) {
        each.item.pid = state->second.pid;
      }
      if (name == each.item.label) {
        // Masked, or enabled, only until the next start: the folders of that aren't among those that were read.
        const std::string& fileState = state->second.fileState;
        each.item.isDisabled =
            fileState.starts_with("masked") || (each.item.isDisabled && !fileState.starts_with("enabled"));
      }
    }
  }
}

std::vector<BackgroundItem> LinuxBackgroundItemsScanner::scan() const {
  std::vector<Found> persons = foundUnits({reader_, files_, places_.userUnits}, true);
  std::ranges::move(foundEntries(), std::back_inserter(persons));
  addStates(persons, true);
  std::vector<Found> systems = foundUnits({reader_, files_, places_.systemUnits}, false);
  addStates(systems, false);
  std::vector<BackgroundItem> items;
  for (std::vector<Found>* const list : {&persons, &systems}) {
    for (Found& each : *list) {
      items.push_back(std::move(each.item));
    }
  }
  return sortedBackgroundItems(std::move(items));
}

}  // namespace lumenary
