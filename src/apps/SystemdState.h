#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "platform/ToolRunner.h"

namespace lumenary {

/// What a systemd that runs tells of one unit.
struct UnitState {
  std::optional<std::int64_t> pid{};  ///< of its main process, where it has one
  std::string fileState{};            ///< "enabled", "masked-runtime"

  bool operator==(const UnitState&) const = default;
};

using UnitStates = std::map<std::string, UnitState, std::less<>>;

/// The names in what `systemctl list-units` tells.
std::set<std::string> loadedUnits(std::string_view text);
/// What `systemctl show` tells; units without a name are left out.
UnitStates unitStates(std::string_view text);

/// Asks about those of `units` that the person's systemd, or the computer's, has loaded. Empty without systemctl or
/// where it can't be reached. Two runs of the tool, however many units; blocks.
UnitStates askUnitStates(const ToolRunner& tools, const std::string& systemctl, bool isPersons,
                         const std::set<std::string>& units);

}  // namespace lumenary
