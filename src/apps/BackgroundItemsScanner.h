#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "apps/BackgroundItem.h"
#include "base/PropertyList.h"
#include "platform/DurableFiles.h"
#include "platform/FileReader.h"
#include "platform/ToolRunner.h"

/// What launchd starts, from its property lists on the disk.
namespace lumenary {

constexpr auto launchctlPath = "/bin/launchctl";

/// Whether a label was turned off, from what `launchctl print-disabled` tells; a label that it doesn't name isn't in
/// the map.
std::map<std::string, bool, std::less<>> disabledLabels(std::string_view text);

/// The process of each label that runs, from what `launchctl list` tells.
std::map<std::string, std::int64_t, std::less<>> runningPIDs(std::string_view text);

/// The outermost app that holds a program; none for a program outside of apps. A relative path is taken as if it stood
/// at the root, where launchd starts its programs.
std::optional<FileURL> ownerAppOf(std::string_view program);

/// When the property list of an item makes it start, for people.
std::string launchdSchedule(const PropertyListValue::Dictionary& dictionary);

/// Stateless; blocks while it reads and while the tools run.
class BackgroundItemsScanner {
 public:
  struct Folders {
    std::string user;      ///< ~/Library/LaunchAgents
    std::string allUsers;  ///< /Library/LaunchAgents
    std::string system;    ///< /Library/LaunchDaemons
  };

  /// The references must outlive the value.
  BackgroundItemsScanner(const FileReader& reader, DurableFiles& files, const ToolRunner& tools, Folders folders,
                         InstalledAppNames installedApps, std::uint32_t userID)
      : reader_(reader),
        files_(files),
        tools_(tools),
        folders_(std::move(folders)),
        installedApps_(std::move(installedApps)),
        userID_(userID) {}

  /// All items, sorted. What can't be read gives none; without launchctl nothing runs and each file tells for itself
  /// whether it is turned off.
  std::vector<BackgroundItem> scan() const;

  std::string owner(std::string_view label, const std::optional<FileURL>& appURL) const;

 private:
  std::string launchctl(std::vector<std::string> arguments) const;
  std::optional<BackgroundItem> read(const std::string& path, BackgroundItem::Domain domain) const;
  std::vector<BackgroundItem> readFolder(const std::string& folder, BackgroundItem::Domain domain) const;

  const FileReader& reader_;
  DurableFiles& files_;
  const ToolRunner& tools_;
  Folders folders_;
  InstalledAppNames installedApps_;
  std::uint32_t userID_;
};

}  // namespace lumenary
