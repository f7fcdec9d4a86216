#include <gtest/gtest.h>

#include <vector>

#include "monitoring/MonitoringDemand.h"

namespace lumenary {
namespace {

using enum MonitoringSurface;
using std::chrono::seconds;

TEST(MonitoringDemand, FollowsWhatIsShown) {
  struct Case {
    const char* name;
    MonitoringSurfaces shown;
    MonitoringDemand demand;
  };
  const std::vector<Case> cases = {
      {"nothing", {}, {seconds(30), false, false}},
      {"a room without its window", {memory, overview, ports}, {seconds(30), false, false}},
      {"the handle", {notchCollapsed}, {seconds(10), false, false}},
      {"the open notch", {notchExpanded, notchCollapsed}, {seconds(2), false, false}},
      {"its memory", {notchExpanded, notchMemory}, {seconds(2), true, false}},
      {"its ports", {notchExpanded, notchPorts}, {seconds(2), false, true}},
      {"the former notch", {notchLegacy}, {seconds(30), true, true}},
      {"the window", {mainWindow}, {seconds(2), false, false}},
      {"Overview", {mainWindow, overview}, {seconds(2), true, true}},
      {"Memory", {mainWindow, memory}, {seconds(2), true, false}},
      {"Ports & Projects", {mainWindow, developer, ports}, {seconds(2), true, true}},
  };
  for (const auto& [name, shown, demand] : cases) {
    EXPECT_EQ(MonitoringDemand::resolve(shown), demand) << name;
  }
}

}  // namespace
}  // namespace lumenary
