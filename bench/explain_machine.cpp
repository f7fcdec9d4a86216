// explain_machine: what the program says of the machine that it runs on, as text. It only reads.

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "apps/AppInventoryScanner.h"
#include "apps/LinuxAppLayout.h"
#include "apps/LinuxBackgroundItemsScanner.h"
#include "apps/LinuxStartupPlaces.h"
#include "base/AppFormatting.h"
#include "base/Text.h"
#include "cleanup/CleanupCatalog.h"
#include "monitoring/PortInspector.h"
#include "monitoring/ProcessInspector.h"
#include "monitoring/SystemMetricsService.h"
#include "platform/Platform.h"
#include "storage/SystemDataScanner.h"

namespace {

using namespace lumenary;

void line(const std::string& text) { std::puts(displayText(text).c_str()); }

std::string sizeOf(std::uint64_t bytes) { return AppFormatting::bytes(static_cast<std::int64_t>(bytes)); }

std::string percent(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f %%", value);
  return text;
}

void explainLoad(const Platform& platform) {
  SystemMetricsService metrics(*platform.systemCounters);
  ProcessInspector inspector(*platform.processes, *platform.appControl, "");
  metrics.capture(platform.now());
  inspector.appUsage(platform.now());
  std::this_thread::sleep_for(std::chrono::seconds(1));
  const SystemSnapshot now = metrics.capture(platform.now());
  line("Load " + percent(now.cpuPercent) + ", memory " + sizeOf(now.usedMemoryBytes) + " of " +
       sizeOf(now.totalMemoryBytes) + ", apps " + sizeOf(now.appMemoryBytes) + ", files " +
       sizeOf(now.cachedFilesBytes) + ", swap " + sizeOf(now.swapUsedBytes) + ", pressure " +
       std::string(memoryPressureTexts[static_cast<std::size_t>(now.memoryPressure)]));
  for (const AppMemoryUsage& usage : inspector.appUsage(platform.now())) {
    line("  " + usage.name + ": " + sizeOf(usage.memoryBytes) + ", " + std::to_string(usage.processCount) +
         " processes, " + percent(usage.cpuPercent));
  }
}

void explainPorts(const Platform& platform) {
  const PortInspector ports(*platform.sockets, *platform.processes, *platform.reader, platform.places.home);
  for (const PortEntry& port : ports.inspect()) {
    line("  " + port.protocolName + " " + port.address + ":" + std::to_string(port.port) + " " + port.processName +
         " (" + std::to_string(port.pid) + ") " + port.command.value_or("") + " " + port.projectRoot.value_or(""));
  }
}

void explainApps(const Platform& platform) {
  const CleanupCatalog catalog(*platform.appNames);
  AppInventoryScanner scanner = linuxInventoryScanner(platform.places, platform.apps->apps(), catalog);
  scanner.now = platform.now;
  const AppInventory inventory = scanner.inventory(*platform.reader, *platform.files);
  for (const InstalledApp& app : inventory.apps) {
    line("  " + app.name + " [" + app.bundleID + "] " + AppFormatting::bytes(app.totalBytes()));
    for (const AppDataItem& item : app.items) {
      line("    " + item.title + " " + AppFormatting::bytes(item.bytes) + " " + item.url.path);
    }
  }
}

void explainBackground(const Platform& platform) {
  const LinuxBackgroundItemsScanner scanner(
      *platform.reader, *platform.files, *platform.tools,
      linuxStartupPlaces([](const char* name) { return std::getenv(name); }, platform.places), {});
  for (const BackgroundItem& item : scanner.scan()) {
    line("  " + item.owner + ": " + item.label + " · " + std::string(rawValue(item.domain)) + " · " + item.schedule +
         " · " + std::string(stateText(item)));
  }
}

void explainSystem(const Platform& platform) {
  const SystemDataScanner scanner(
      {*platform.reader, *platform.tools, *platform.systemFacts, *platform.volumes, *platform.mountTable},
      platform.places.home, {}, std::nullopt);
  const SystemDataReport report = scanner.scan();
  for (const auto* const parts : {&report.volumes, &report.locations}) {
    for (const SystemDataPart& part : *parts) {
      line("  " + part.title + ": " + (part.bytes ? AppFormatting::bytes(*part.bytes) : "not measured") + ". " +
           part.explanation);
    }
  }
}

}  // namespace

int main() {
  const Platform platform = makePlatform();
  explainLoad(platform);
  line("Ports");
  explainPorts(platform);
  line("Apps");
  explainApps(platform);
  line("What starts by itself");
  explainBackground(platform);
  line("Why so much is used");
  explainSystem(platform);
  return 0;
}
