#include "apps/SystemdSchedule.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <string_view>
#include <vector>

namespace lumenary {
namespace {

/// What systemd reaches on its way up, without anybody asking.
constexpr std::array<std::string_view, 7> startTargets = {
    "default.target",   "graphical-session.target", "graphical-session-pre.target",
    "graphical.target", "multi-user.target",        "basic.target",
    "sysinit.target"};

bool isStartTarget(std::string_view name) { return std::ranges::find(startTargets, name) != startTargets.end(); }

bool startsAtLogin(const SystemdUnit& unit) {
  if (std::ranges::any_of(unit.startedBy, isStartTarget)) {
    return true;
  }
  for (const char* const key : {"WantedBy", "RequiredBy"}) {
    for (const std::string& list : unit.settings.values("Install", key)) {
      std::istringstream words(list);
      for (std::string word; words >> word;) {
        if (isStartTarget(word)) {
          return true;
        }
      }
    }
  }
  return false;
}

bool hasAny(const UnitFile& settings, std::string_view section, std::initializer_list<std::string_view> keys) {
  return std::ranges::any_of(keys, [&](std::string_view key) { return !settings.value(section, key).empty(); });
}

void addTimerPhrases(const UnitFile& settings, std::vector<std::string>& phrases) {
  const std::string sinceStart = settings.value("Timer", "OnUnitActiveSec");
  const std::string interval = sinceStart.empty() ? settings.value("Timer", "OnUnitInactiveSec") : sinceStart;
  if (!interval.empty()) {
    const auto seconds = unitTimeSpan(interval);
    phrases.push_back(seconds ? intervalPhrase(*seconds) : schedulePhrase::onSchedule);
  } else if (hasAny(settings, "Timer", {"OnBootSec", "OnStartupSec", "OnActiveSec"})) {
    phrases.emplace_back(schedulePhrase::atLogin);  // some time after it, and only once
  }
  if (hasAny(settings, "Timer", {"OnCalendar"})) {
    phrases.emplace_back(schedulePhrase::onSchedule);
  }
}

}  // namespace

std::string systemdSchedule(const SystemdUnit& unit, const UnitFile& service) {
  std::vector<std::string> phrases;
  if (!unit.isTrigger()) {
    if (startsAtLogin(unit)) {
      phrases.emplace_back(schedulePhrase::atLogin);
    }
    const std::string restart = service.value("Service", "Restart");
    if (restart == "always" || restart == "on-failure") {
      phrases.emplace_back(schedulePhrase::keptRunning);
    }
  }
  addTimerPhrases(unit.settings, phrases);
  if (hasAny(unit.settings, "Path",
             {"PathChanged", "PathModified", "PathExists", "PathExistsGlob", "DirectoryNotEmpty"})) {
    phrases.emplace_back(schedulePhrase::onFileChange);
  }
  if (unit.settings.hasSection("Socket") || hasAny(unit.settings, "Service", {"BusName"})) {
    phrases.emplace_back(schedulePhrase::onRequest);
  }
  return scheduleText(phrases);
}

}  // namespace lumenary
