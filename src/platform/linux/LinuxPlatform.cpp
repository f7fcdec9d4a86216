#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <thread>

#include "platform/Platform.h"
#include "platform/linux/LinuxAppControl.h"
#include "platform/linux/LinuxAppNames.h"
#include "platform/linux/LinuxAppRegistry.h"
#include "platform/linux/LinuxContentReader.h"
#include "platform/linux/LinuxDefaults.h"
#include "platform/linux/LinuxDesktop.h"
#include "platform/linux/LinuxDurableFiles.h"
#include "platform/linux/LinuxFileMetadata.h"
#include "platform/linux/LinuxFileReader.h"
#include "platform/linux/LinuxFolderWatcher.h"
#include "platform/linux/LinuxInterruption.h"
#include "platform/linux/LinuxKernel.h"
#include "platform/linux/LinuxMountTable.h"
#include "platform/linux/LinuxMountWatcher.h"
#include "platform/linux/LinuxPlaces.h"
#include "platform/linux/LinuxProcessReader.h"
#include "platform/linux/LinuxSession.h"
#include "platform/linux/LinuxSocketReader.h"
#include "platform/linux/LinuxSystemCounters.h"
#include "platform/linux/LinuxSystemFacts.h"
#include "platform/linux/LinuxTerminal.h"
#include "platform/linux/LinuxToolRunner.h"
#include "platform/linux/LinuxTrash.h"
#include "platform/linux/LinuxTrashBin.h"
#include "platform/linux/LinuxVolumeReader.h"

namespace lumenary {
namespace {

/// Where a standard descriptor is closed, the next file opened would take its number, and what is printed would end in
/// it.
void holdStandardDescriptors() {
  for (int number = STDIN_FILENO; number <= STDERR_FILENO; ++number) {
    if (::fcntl(number, F_GETFD) < 0) {
      ::open("/dev/null", O_RDONLY);
    }
  }
}

}  // namespace

Platform makePlatform() {
  // The platform is a value that moves; what others hold on to stays in its place, as long as the process lives.
  static LinuxKernel kernel;
  const Environment environment = [](const char* name) { return std::getenv(name); };
  static const Places places = placesOf(environment);

  const auto launchedAt = std::chrono::steady_clock::now();
  holdStandardDescriptors();
  Platform platform;
  platform.interruption = std::make_unique<LinuxInterruption>();
  platform.places = places;
  platform.reader = std::make_unique<LinuxFileReader>();
  platform.contents = std::make_unique<LinuxContentReader>(*platform.reader);
  platform.mountTable = std::make_unique<LinuxMountTable>();
  platform.volumes = std::make_unique<LinuxVolumeReader>();
  platform.files = std::make_unique<LinuxDurableFiles>(kernel);
  platform.trash = std::make_unique<LinuxTrash>(kernel, *platform.reader, *platform.mountTable, places);
  platform.trashBin = std::make_unique<LinuxTrashBin>(kernel, *platform.reader, *platform.mountTable, places, 4);
  platform.appNames = std::make_unique<LinuxAppNames>(applicationFolders(environment, places));
  platform.apps =
      std::make_unique<LinuxAppRegistry>(*platform.reader, *platform.files, linuxAppRoots(environment, places));
  platform.metadata = std::make_unique<LinuxFileMetadata>(*platform.files, places.dataHome + "/recently-used.xbel");
  platform.defaults = std::make_unique<LinuxDefaults>(*platform.files, places.defaultsFile);
  const char* const display = environment("DISPLAY");
  platform.session = std::make_unique<LinuxSession>(display == nullptr ? "" : display, "/proc/asound");
  platform.tools = std::make_unique<LinuxToolRunner>();
  platform.systemFacts = std::make_unique<LinuxSystemFacts>();
  platform.folderWatcher = std::make_unique<LinuxFolderWatcher>();
  platform.supportWatcher = std::make_unique<LinuxFolderWatcher>();
  platform.mountWatcher = std::make_unique<LinuxMountWatcher>();
  platform.desktop = std::make_unique<LinuxDesktop>(*platform.tools);
  platform.systemCounters = std::make_unique<LinuxSystemCounters>();
  platform.processes = std::make_unique<LinuxProcessReader>(*platform.apps);
  platform.sockets = std::make_unique<LinuxSocketReader>();
  platform.appControl = std::make_unique<LinuxAppControl>(*platform.tools, *platform.processes, *platform.apps,
                                                          display == nullptr ? "" : display);
  platform.terminal = std::make_unique<LinuxTerminal>();
  platform.now = [] { return std::chrono::floor<Date::duration>(std::chrono::system_clock::now()); };
  platform.probe = PerfProbe::of(std::getenv("LUMENARY_BENCH"), std::getenv("LUMENARY_OFF"));
  platform.probe.launchedAt = launchedAt;
  platform.processID = ::getpid();
  platform.processors = [] { return std::max(1U, std::thread::hardware_concurrency()); };
  return platform;
}

}  // namespace lumenary
