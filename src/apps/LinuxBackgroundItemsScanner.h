#pragma once

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "apps/AutostartEntries.h"
#include "apps/BackgroundItem.h"
#include "apps/LinuxStartupPlaces.h"
#include "apps/SystemdState.h"
#include "apps/SystemdUnits.h"
#include "platform/DurableFiles.h"
#include "platform/FileReader.h"
#include "platform/ToolRunner.h"

namespace lumenary {

/// The unit as which systemd runs the autostart entry of this id.
std::string autostartUnit(std::string_view id);

/// What starts on its own on Linux: units of systemd and autostart entries. The label of an item is the name of its
/// unit, or the id of its entry. A trigger (a timer, a path, a socket) is the item of the service that it starts.
/// Stateless; blocks while it reads and while systemctl runs.
class LinuxBackgroundItemsScanner {
 public:
  /// `installedApps` by desktop id or Flatpak id. The references must outlive the value.
  LinuxBackgroundItemsScanner(const FileReader& reader, DurableFiles& files, const ToolRunner& tools,
                              LinuxStartupPlaces places, InstalledAppNames installedApps)
      : reader_(reader),
        files_(files),
        tools_(tools),
        places_(std::move(places)),
        installedApps_(std::move(installedApps)) {}

  /// All items, sorted. Without systemctl nothing runs, and the files tell what is turned off.
  std::vector<BackgroundItem> scan() const;

 private:
  /// An item, and the units to ask about: the first that has a process tells its.
  struct Found {
    BackgroundItem item;
    std::vector<std::string> units;
  };
  std::vector<Found> foundUnits(const SystemdUnits& units, bool isPersons) const;
  Found foundUnit(const SystemdUnit& unit, const SystemdUnits& units, bool isPersons) const;
  std::vector<Found> foundEntries() const;
  void addStates(std::vector<Found>& found, bool isPersons) const;

  const FileReader& reader_;
  DurableFiles& files_;
  const ToolRunner& tools_;
  LinuxStartupPlaces places_;
  InstalledAppNames installedApps_;
};

}  // namespace lumenary
