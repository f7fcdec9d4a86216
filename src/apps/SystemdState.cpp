#include "apps/SystemdState.h"

#include <algorithm>
#include <charconv>
#include <utility>
#include <vector>

namespace lumenary {
namespace {

/// More would not fit into one command line.
constexpr std::size_t unitLimit = 4000;

std::string_view takeLine(std::string_view& text) {
  const std::size_t end = std::min(text.find('\n'), text.size());
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return line;
}

std::optional<std::int64_t> processNumber(std::string_view text) {
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() && number > 0 ? std::optional(number) : std::nullopt;
}

}  // namespace

std::set<std::string> loadedUnits(std::string_view text) {
  std::set<std::string> units;
  while (!text.empty()) {
    const std::string_view line = takeLine(text);
    const std::string_view name = line.substr(0, line.find(' '));
    if (!name.empty()) {
      units.emplace(name);
    }
  }
  return units;
}

UnitStates unitStates(std::string_view text) {
  UnitStates states;
  std::string name;
  UnitState state;
  const auto finish = [&] {
    if (!name.empty()) {
      states[std::exchange(name, {})] = std::move(state);
    }
    state = {};
  };
  while (!text.empty()) {
    const std::string_view line = takeLine(text);
    if (line.empty()) {
      finish();
    } else if (line.starts_with("Id=")) {
      name = line.substr(line.find('=') + 1);
    } else if (line.starts_with("MainPID=")) {
      state.pid = processNumber(line.substr(line.find('=') + 1));
    } else if (line.starts_with("UnitFileState=")) {
      state.fileState = line.substr(line.find('=') + 1);
    }
  }
  finish();
  return states;
}

UnitStates askUnitStates(const ToolRunner& tools, const std::string& systemctl, bool isPersons,
                         const std::set<std::string>& units) {
  const auto ask = [&](std::vector<std::string> arguments) {
    if (isPersons) {
      arguments.insert(arguments.begin(), "--user");
    }
    return toolText(tools, {.path = systemctl, .arguments = std::move(arguments)}).value_or("");
  };
  const std::set<std::string> loaded = loadedUnits(ask(
      {"list-units", "--type=service,timer,socket,path", "--all", "--plain", "--no-legend", "--no-pager", "--full"}));
  std::vector<std::string> asked = {"show", "--no-pager", "--property=Id,MainPID,UnitFileState", "--"};
  const std::size_t words = asked.size();
  std::ranges::set_intersection(units, loaded, std::back_inserter(asked));
  if (asked.size() == words) {
    return {};
  }
  asked.resize(std::min(asked.size(), words + unitLimit));
  return unitStates(ask(std::move(asked)));
}

}  // namespace lumenary
