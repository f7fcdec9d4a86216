#include "apps/BackgroundItemsScanner.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "base/Path.h"
#include "base/Unicode.h"

namespace lumenary {
namespace {

constexpr std::string_view listExtension = ".plist";
constexpr std::string_view appExtension = ".app";
constexpr std::size_t listByteLimit = std::size_t{1} << 20;

/// Cuts the next line off the text; its line break is dropped.
std::string_view takeLine(std::string_view& text) {
  const std::size_t end = std::min(text.find('\n'), text.size());
  std::string_view line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  if (line.ends_with('\r')) {
    line.remove_suffix(1);
  }
  return line;
}

std::string_view withoutQuotes(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of('"'), text.size()));
  return text.substr(0, text.find_last_not_of('"') + 1);
}

std::optional<std::int64_t> wholeNumber(std::string_view text) {
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

std::optional<std::string> textAt(const PropertyListValue::Dictionary& dictionary, std::string_view key) {
  const PropertyListValue* const value = valueAt(dictionary, key);
  const std::string* const text = value == nullptr ? nullptr : value->text();
  return text == nullptr ? std::nullopt : std::optional(*text);
}

std::optional<bool> booleanAt(const PropertyListValue::Dictionary& dictionary, std::string_view key) {
  const PropertyListValue* const value = valueAt(dictionary, key);
  const bool* const boolean = value == nullptr ? nullptr : value->boolean();
  return boolean == nullptr ? std::nullopt : std::optional(*boolean);
}

std::optional<std::string> programOf(const PropertyListValue::Dictionary& dictionary) {
  if (auto program = textAt(dictionary, "Program")) {
    return program;
  }
  const PropertyListValue* const arguments = valueAt(dictionary, "ProgramArguments");
  const PropertyListValue::Array* const words = arguments == nullptr ? nullptr : arguments->array();
  const auto isText = [](const PropertyListValue& word) { return word.text() != nullptr; };
  if (words == nullptr || words->empty() || !std::ranges::all_of(*words, isText)) {
    return std::nullopt;
  }
  return *words->front().text();
}

}  // namespace

std::map<std::string, bool, std::less<>> disabledLabels(std::string_view text) {
  constexpr std::string_view arrow = "=>";
  std::map<std::string, bool, std::less<>> labels;
  while (!text.empty()) {
    const std::string_view line = takeLine(text);
    const std::size_t at = line.find(arrow);
    if (at == std::string_view::npos || line.find(arrow, at + arrow.size()) != std::string_view::npos) {
      continue;
    }
    const std::string_view state = trimmed(line.substr(at + arrow.size()));
    labels[std::string(withoutQuotes(trimmed(line.substr(0, at))))] = state == "disabled" || state == "true";
  }
  return labels;
}

std::map<std::string, std::int64_t, std::less<>> runningPIDs(std::string_view text) {
  std::map<std::string, std::int64_t, std::less<>> pids;
  for (bool isHeader = true; !text.empty();) {
    const std::string_view line = takeLine(text);
    if (line.empty() || std::exchange(isHeader, false)) {
      continue;
    }
    const std::size_t first = line.find('\t');
    const std::size_t second = first == std::string_view::npos ? first : line.find('\t', first + 1);
    if (second == std::string_view::npos || line.find('\t', second + 1) != std::string_view::npos) {
      continue;
    }
    if (const auto pid = wholeNumber(line.substr(0, first))) {
      pids[std::string(line.substr(second + 1))] = *pid;
    }
  }
  return pids;
}

std::optional<FileURL> ownerAppOf(std::string_view program) {
  std::size_t end = program.find(".app/");
  if (end == std::string_view::npos && program.ends_with(appExtension)) {
    end = program.size() - appExtension.size();
  }
  if (end == std::string_view::npos) {
    return std::nullopt;
  }
  return FileURL{.path = standardise(program.substr(0, end + appExtension.size())), .isFolder = true};
}

std::string launchdSchedule(const PropertyListValue::Dictionary& dictionary) {
  const auto holds = [&](std::string_view key) { return valueAt(dictionary, key) != nullptr; };
  std::vector<std::string> phrases;
  if (booleanAt(dictionary, "RunAtLoad") == true) {
    phrases.emplace_back(schedulePhrase::atLogin);
  }
  if (holds("KeepAlive") && booleanAt(dictionary, "KeepAlive") != false) {
    phrases.emplace_back(schedulePhrase::keptRunning);
  }
  const PropertyListValue* const interval = valueAt(dictionary, "StartInterval");
  if (interval != nullptr && interval->integer() != nullptr) {
    phrases.push_back(intervalPhrase(*interval->integer()));
  }
  if (holds("StartCalendarInterval")) {
    phrases.emplace_back(schedulePhrase::onSchedule);
  }
  if (holds("WatchPaths") || holds("QueueDirectories")) {
    phrases.emplace_back(schedulePhrase::onFileChange);
  }
  if (holds("MachServices") || holds("Sockets")) {
    phrases.emplace_back(schedulePhrase::onRequest);
  }
  return scheduleText(phrases);
}

std::string BackgroundItemsScanner::owner(std::string_view label, const std::optional<FileURL>& appURL) const {
  if (appURL) {
    const std::string_view name = lastPathComponent(appURL->path);
    return std::string(name.substr(0, name.size() - appExtension.size()));
  }
  return knownBackgroundOwner(label, installedApps_).value_or(backgroundOwnerOfLabel(label));
}

std::string BackgroundItemsScanner::launchctl(std::vector<std::string> arguments) const {
  return toolText(tools_, {.path = launchctlPath, .arguments = std::move(arguments)}).value_or("");
}

std::optional<BackgroundItem> BackgroundItemsScanner::read(const std::string& path,
                                                           BackgroundItem::Domain domain) const {
  const auto text = files_.read(path, listByteLimit);
  const auto list = text ? parsePropertyList(*text) : std::nullopt;
  const PropertyListValue::Dictionary* const dictionary = list ? list->dictionary() : nullptr;
  if (dictionary == nullptr) {
    return std::nullopt;
  }
  const std::string_view name = lastPathComponent(path);
  BackgroundItem item{
      .url = {.path = path},
      .label = textAt(*dictionary, "Label").value_or(std::string(name.substr(0, name.size() - listExtension.size()))),
      .domain = domain,
      .program = programOf(*dictionary)};
  if (item.program) {
    item.ownerAppURL = ownerAppOf(*item.program);
    item.programExists = !isProgramGone(reader_, *item.program);
  }
  item.owner = owner(item.label, item.ownerAppURL);
  item.schedule = launchdSchedule(*dictionary);
  item.isDisabled = booleanAt(*dictionary, "Disabled").value_or(false);
  return item;
}

std::vector<BackgroundItem> BackgroundItemsScanner::readFolder(const std::string& folder,
                                                               BackgroundItem::Domain domain) const {
  std::vector<BackgroundItem> items;
  auto names = files_.names(folder).value_or(std::vector<std::string>());
  std::ranges::sort(names);
  for (const std::string& name : names) {
    if (!name.ends_with(listExtension)) {
      continue;
    }
    if (auto item = read(appendingPathComponent(folder, name), domain)) {
      items.push_back(*std::move(item));
    }
  }
  return items;
}

std::vector<BackgroundItem> BackgroundItemsScanner::scan() const {
  using Domain = BackgroundItem::Domain;
  const auto ofPerson = disabledLabels(launchctl({"print-disabled", "gui/" + std::to_string(userID_)}));
  const auto ofSystem = disabledLabels(launchctl({"print-disabled", "system"}));
  const auto pids = runningPIDs(launchctl({"list"}));
  std::vector<BackgroundItem> items;
  const std::array<std::pair<const std::string*, Domain>, 3> folders = {
      {{&folders_.user, Domain::user}, {&folders_.allUsers, Domain::allUsers}, {&folders_.system, Domain::system}}};
  for (const auto& [folder, domain] : folders) {
    const auto& switches = domain == Domain::system ? ofSystem : ofPerson;
    for (BackgroundItem& item : readFolder(*folder, domain)) {
      if (const auto found = switches.find(item.label); found != switches.end()) {
        item.isDisabled = found->second;
      }
      if (const auto found = pids.find(item.label); found != pids.end()) {
        item.pid = found->second;
      }
      items.push_back(std::move(item));
    }
  }
  return sortedBackgroundItems(std::move(items));
}

}  // namespace lumenary
