#include "monitoring/MonitoringDemand.h"

#include <algorithm>
#include <initializer_list>

namespace lumenary {
namespace {

using enum MonitoringSurface;

constexpr std::chrono::seconds watchedInterval{2};
constexpr std::chrono::seconds glancedInterval{10};
constexpr std::chrono::seconds unseenInterval{30};

bool anyOf(const MonitoringSurfaces& surfaces, std::initializer_list<MonitoringSurface> wanted) {
  return std::ranges::any_of(wanted, [&](MonitoringSurface surface) { return surfaces.contains(surface); });
}

std::chrono::seconds intervalFor(const MonitoringSurfaces& surfaces) {
  if (anyOf(surfaces, {mainWindow, notchExpanded})) {
    return watchedInterval;
  }
  return surfaces.contains(notchCollapsed) ? glancedInterval : unseenInterval;
}

}  // namespace

MonitoringDemand MonitoringDemand::resolve(const MonitoringSurfaces& surfaces) {
  const bool isWindowOpen = surfaces.contains(mainWindow);
  return {.interval = intervalFor(surfaces),
          .samplesProcesses = anyOf(surfaces, {notchMemory, notchLegacy}) ||
                              (isWindowOpen && anyOf(surfaces, {overview, memory, developer})),
          .samplesPorts = anyOf(surfaces, {notchPorts, notchLegacy}) ||
                          (isWindowOpen && anyOf(surfaces, {MonitoringSurface::ports, overview}))};
}

}  // namespace lumenary
