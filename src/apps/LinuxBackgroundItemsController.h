#pragma once

#include <expected>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "apps/BackgroundItem.h"
#include "apps/BackgroundItemRemoval.h"
#include "apps/LinuxStartupPlaces.h"
#include "platform/DurableFiles.h"
#include "platform/FileReader.h"
#include "platform/ToolRunner.h"

namespace lumenary {

/// Switches and removes what starts for this person alone. Whatever is refused, or goes wrong with a switch, the next
/// scan shows how it is. Stateless; blocks while systemctl runs, each time for ten seconds at most.
class LinuxBackgroundItemsController {
 public:
  /// The references must outlive the value.
  LinuxBackgroundItemsController(const FileReader& reader, DurableFiles& files, const ToolRunner& tools,
                                 const BackgroundItemRemoval& removal, LinuxStartupPlaces places)
      : reader_(reader), files_(files), tools_(tools), removal_(removal), places_(std::move(places)) {}

  /// The person's own units, and every autostart entry: one that is installed for all is overridden by a file of the
  /// person's. Not a unit that is a link: systemd would take away the link itself, and nothing could turn it on again.
  bool canSwitch(const BackgroundItem& item) const;
  /// Nothing happens where `canSwitch` says no.
  void setEnabled(const BackgroundItem& item, bool enabled) const;
  /// Stops the item, turns it off, and moves its file to the Trash. An item that isn't the person's alone is left
  /// alone, without an error.
  std::expected<void, CleanupRefusal> remove(const BackgroundItem& item) const;

 private:
  void systemctl(std::vector<std::string> arguments) const;
  bool isEnabled(const std::string& unit) const;
  std::vector<std::string> servicesOf(const BackgroundItem& item) const;
  void stop(const std::vector<std::string>& units) const;
  void turnOff(const BackgroundItem& item) const;
  void stopEntry(const BackgroundItem& item) const;
  std::optional<std::string> switchedEntry(const BackgroundItem& item, bool enabled) const;
  void switchEntry(const BackgroundItem& item, bool enabled) const;
  bool isLink(const BackgroundItem& item) const;

  const FileReader& reader_;
  DurableFiles& files_;
  const ToolRunner& tools_;
  const BackgroundItemRemoval& removal_;
  LinuxStartupPlaces places_;
};

}  // namespace lumenary
