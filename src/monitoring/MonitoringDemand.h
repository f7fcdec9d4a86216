#pragma once

#include <chrono>
#include <cstdint>
#include <set>

namespace lumenary {

/// What shows live numbers.
enum class MonitoringSurface : std::uint8_t {
  mainWindow,
  notchCollapsed,
  notchExpanded,
  notchMemory,
  notchPorts,
  notchLegacy,
  overview,
  memory,
  developer,
  ports,
};
using MonitoringSurfaces = std::set<MonitoringSurface>;

/// How often to look, and at what: sampling costs energy, so the surfaces that are shown decide.
struct MonitoringDemand {
  std::chrono::seconds interval{30};
  bool samplesProcesses = false;
  bool samplesPorts = false;

  static MonitoringDemand resolve(const MonitoringSurfaces& surfaces);

  bool operator==(const MonitoringDemand&) const = default;
};

}  // namespace lumenary
