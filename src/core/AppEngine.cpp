#include "core/AppEngine.h"

#include <cstdlib>
#include <string>

#include "platform/UserFolders.h"

namespace lumenary {
namespace {

std::string userName() {
  const char* const name = std::getenv("USER");
  return name == nullptr ? "" : name;
}

}  // namespace

AppEngine::AppEngine(Platform& of, ScanStore& keptIn)
    : platform(of),
      store(keptIn),
      places(withUserFolders(of.places, *of.files)),
      scanner(*of.reader, *of.mountTable, places, of.now, of.processors()),
      volumeMetrics(*of.reader, *of.volumes, *of.mountTable, places),
      processInspector(*of.processes, *of.appControl, userName()),
      portInspector(*of.sockets, *of.processes, *of.reader, places.home),
      catalog(*of.appNames, places.downloads),
      apps(makeAppSystem(of, catalog)),
      appRemovalWatcher([&registry = *of.apps] { return installedSnapshot(registry); },
                        [&registry = *of.apps](const std::string& id) { return registry.isInstalled(id); }),
      acts({.reader = *of.reader,
            .contents = *of.contents,
            .mountTable = *of.mountTable,
            .places = places,
            .trash = *of.trash,
            .files = *of.files,
            .store = keptIn,
            .now = of.now}) {}

std::shared_ptr<const StorageTrashGate> AppEngine::makeGate() const {
  return std::make_shared<const StorageTrashGate>(*platform.reader, *platform.mountTable, places, platform.probe);
}

}  // namespace lumenary
