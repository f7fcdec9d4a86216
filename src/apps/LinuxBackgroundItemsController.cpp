#include "apps/LinuxBackgroundItemsController.h"

#include <chrono>
#include <sstream>

#include "apps/AutostartEntries.h"
#include "apps/LinuxBackgroundItemsScanner.h"
#include "base/Path.h"
#include "platform/linux/DesktopEntry.h"
#include "platform/linux/UnitFile.h"

namespace lumenary {
namespace {

constexpr auto toolTimeLimit = std::chrono::seconds(10);

bool isAutostart(const BackgroundItem& item) { return item.url.path.ends_with(".desktop"); }

bool isOwn(const BackgroundItem& item) { return item.domain == BackgroundItem::Domain::user; }

}  // namespace

void LinuxBackgroundItemsController::systemctl(std::vector<std::string> arguments) const {
  arguments.insert(arguments.begin(), "--user");
  static_cast<void>(
      tools_.run({.path = places_.systemctl, .arguments = std::move(arguments), .timeLimit = toolTimeLimit}));
}

bool LinuxBackgroundItemsController::isLink(const BackgroundItem& item) const {
  const auto attributes = reader_.attributes(item.url.path, LinkPolicy::refuse);
  return !attributes || attributes->identity.kind == FileKind::link;
}

bool LinuxBackgroundItemsController::canSwitch(const BackgroundItem& item) const {
  const bool hasOwnFolder =
      !places_.autostart.empty() && places_.autostart.front().domain == BackgroundItem::Domain::user;
  return isAutostart(item) ? hasOwnFolder : isOwn(item) && isUnitName(item.label) && !isLink(item);
}

void LinuxBackgroundItemsController::setEnabled(const BackgroundItem& item, bool enabled) const {
  if (!canSwitch(item)) {
    return;
  }
  if (isAutostart(item)) {
    switchEntry(item, enabled);
  } else if (enabled) {
    systemctl({"enable", "--now", "--", item.label});
  } else {
    turnOff(item);
  }
}

/// By itself, whatever else starts it.
bool LinuxBackgroundItemsController::isEnabled(const std::string& unit) const {
  const auto text = toolText(
      tools_,
      {.path = places_.systemctl, .arguments = {"--user", "is-enabled", "--", unit}, .timeLimit = toolTimeLimit});
  return text && text->starts_with("enabled");
}

/// What a trigger starts goes on when the trigger is stopped, and is to be stopped as well: a service that is there for
/// the trigger alone.
std::vector<std::string> LinuxBackgroundItemsController::servicesOf(const BackgroundItem& item) const {
  if (item.label.ends_with(".service")) {
    return {};
  }
  const auto text =
      toolText(tools_, {.path = places_.systemctl,
                        .arguments = {"--user", "show", "--property=Triggers", "--value", "--", item.label},
                        .timeLimit = toolTimeLimit});
  std::istringstream words(text.value_or(""));
  std::vector<std::string> services;
  for (std::string word; words >> word;) {
    if (isUnitName(word) && word.ends_with(".service") && !isEnabled(word)) {
      services.push_back(word);
    }
  }
  return services;
}

void LinuxBackgroundItemsController::stop(const std::vector<std::string>& units) const {
  if (!units.empty()) {
    std::vector<std::string> arguments = {"stop", "--"};
    arguments.insert(arguments.end(), units.begin(), units.end());
    systemctl(std::move(arguments));
  }
}

void LinuxBackgroundItemsController::turnOff(const BackgroundItem& item) const {
  // Asked first, as a unit that is off may not be loaded any more.
  const std::vector<std::string> services = servicesOf(item);
  systemctl({"disable", "--now", "--", item.label});
  stop(services);
}

void LinuxBackgroundItemsController::stopEntry(const BackgroundItem& item) const {
  if (item.pid) {
    stop({autostartUnit(item.label)});
  }
}

/// The text of the entry with its switch. What only hides an installed entry has nothing to turn on: then the installed
/// one is what the person's file says from now on.
std::optional<std::string> LinuxBackgroundItemsController::switchedEntry(const BackgroundItem& item,
                                                                         bool enabled) const {
  std::vector<std::string> paths = {item.url.path};
  for (const StartupFolder& folder : places_.autostart) {
    paths.push_back(appendingPathComponent(folder.path, lastPathComponent(item.url.path)));
  }
  for (const std::string& path : paths) {
    const auto text = files_.read(path, autostartByteLimit);
    if (auto switched = text ? withAutostart(*text, enabled) : std::nullopt;
        switched && parseDesktopEntry(*switched).contains("Exec")) {
      return switched;
    }
  }
  return std::nullopt;
}

void LinuxBackgroundItemsController::switchEntry(const BackgroundItem& item, bool enabled) const {
  const std::string& folder = places_.autostart.front().path;
  const auto switched = switchedEntry(item, enabled);
  if (!switched || !files_.makeFolders(folder)) {
    return;
  }
  const bool isWritten =
      files_.writeAtomically(appendingPathComponent(folder, lastPathComponent(item.url.path)), *switched).has_value();
  if (isWritten && !enabled) {
    stopEntry(item);
  }
}

std::expected<void, CleanupRefusal> LinuxBackgroundItemsController::remove(const BackgroundItem& item) const {
  if (!isOwn(item)) {
    return {};
  }
  if (isAutostart(item)) {
    return removal_.remove(item.url.path, [&] { stopEntry(item); });
  }
  if (!isUnitName(item.label)) {
    return {};
  }
  if (!isLink(item)) {
    auto removed = removal_.remove(item.url.path, [&] { turnOff(item); });
    if (removed) {
      systemctl({"daemon-reload"});
    }
    return removed;
  }
  // Turning it off first would take the link away before it could go to the Trash.
  auto removed = removal_.remove(item.url.path, [&] {
    std::vector<std::string> units = servicesOf(item);
    units.insert(units.begin(), item.label);
    stop(units);
  });
  if (removed) {
    systemctl({"disable", "--", item.label});
    systemctl({"daemon-reload"});
  }
  return removed;
}

}  // namespace lumenary
