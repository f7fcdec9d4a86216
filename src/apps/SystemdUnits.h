#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "apps/LinuxStartupPlaces.h"
#include "platform/DurableFiles.h"
#include "platform/FileReader.h"
#include "platform/linux/UnitFile.h"

namespace lumenary {

/// A unit as its files tell of it.
struct SystemdUnit {
  std::string name;  ///< "backup.timer", "sync@work.service"
  std::string path;  ///< of its file; of the link that starts it where it is an instance of a template
  /// Of the file, but `user` only where no installed unit stands behind the person's own one.
  BackgroundItem::Domain domain = BackgroundItem::Domain::user;
  bool isMasked = false;                 ///< kept from starting at all
  std::vector<std::string> startedBy{};  ///< the units that start it, "default.target"; empty where it isn't enabled
  UnitFile settings{};

  bool isEnabled() const { return !startedBy.empty(); }
  bool isTrigger() const;  ///< a timer, a path or a socket
  /// The service that a trigger starts; empty for a service, and for a socket that starts one for each caller.
  std::string triggered() const;
};

/// The services, timers, paths and sockets below the folders of one systemd. Reads the disk; blocks.
class SystemdUnits {
 public:
  /// The references must outlive the value.
  SystemdUnits(const FileReader& reader, DurableFiles& files, const std::vector<StartupFolder>& folders);

  /// What starts on its own, and what stands in the person's own folders in any state, by name. A service that only its
  /// trigger starts is left to that. One that is known by several names is there once.
  std::vector<SystemdUnit> starting() const;
  /// None where no file tells of it.
  std::optional<SystemdUnit> find(const std::string& name) const;

 private:
  struct File {
    std::string path;
    BackgroundItem::Domain domain;
    bool isMask = false;
  };
  struct Start {
    std::string starter;
    std::string link;
  };
  void readFolder(const StartupFolder& folder);
  void readUnit(const std::string& name, const StartupFolder& folder);
  void readLinks(const std::string& starter, const std::string& folder);
  std::string withoutAlias(std::string name) const;
  void readSettings(SystemdUnit& unit, const std::string& path) const;  ///< its drop-ins as well

  const FileReader& reader_;
  DurableFiles& files_;
  std::map<std::string, std::vector<File>> units_;                     ///< by name, the nearest file first
  std::map<std::string, std::string> aliases_;                         ///< the unit that each further name stands for
  std::map<std::pair<std::string, std::string>, std::string> links_;   ///< starter and unit: the link; empty for none
  std::map<std::string, std::vector<Start>> starts_;                   ///< by unit
  std::map<std::string, std::map<std::string, std::string>> dropIns_;  ///< by unit and file name
};

/// What stands behind "@" in the name of an instance; empty for any other unit.
std::string_view unitInstance(std::string_view name);

}  // namespace lumenary
