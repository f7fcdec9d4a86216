#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "apps/LinuxStartupPlaces.h"
#include "platform/DurableFiles.h"
#include "platform/FileReader.h"

/// Desktop entries that a desktop starts when a person logs in.
namespace lumenary {

struct AutostartEntry {
  std::string path;  ///< of the file that counts
  std::string id;    ///< its name without ".desktop"
  /// `user` only where no installed entry stands behind the person's own one.
  BackgroundItem::Domain domain = BackgroundItem::Domain::user;
  bool isOff = false;
  std::optional<std::string> program{};
  std::string name{};  ///< what the entry calls itself; may be empty

  bool operator==(const AutostartEntry&) const = default;
};

/// The entries by their names, those that are turned off included. Left out are those that aren't meant for this
/// desktop and those whose program isn't installed; yet a person's own entry whose program is gone is told.
std::vector<AutostartEntry> autostartEntries(const FileReader& reader, DurableFiles& files,
                                             const LinuxStartupPlaces& places);

/// The entry's text switched on or off, every other line byte for byte as it was. None where it isn't an entry.
std::optional<std::string> withAutostart(std::string_view text, bool isOn);

/// The first word of "Exec", quotes taken away; none where there is none.
std::optional<std::string> execProgram(std::string_view exec);

constexpr std::size_t autostartByteLimit = std::size_t{256} * 1024;

}  // namespace lumenary
