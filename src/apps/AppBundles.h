#pragma once

#include <optional>
#include <string>
#include <vector>

#include "apps/AppFolders.h"
#include "base/FileURL.h"
#include "platform/AppRegistry.h"
#include "platform/DurableFiles.h"

namespace lumenary {

/// An installed app before its data is looked for.
struct FoundBundle {
  FileURL url;
  std::string name;
  std::string bundleID;
  std::optional<std::string> version{};
  std::vector<std::string> folderNames{};  ///< of its data, besides the identifier
  std::vector<std::string> vendorNames{};  ///< of its folder inside its maker's
  std::vector<std::string> ownPaths{};     ///< what the app itself consists of
  AppOrigin origin = AppOrigin::bundle;

  bool operator==(const FoundBundle&) const = default;
};

/// The bundle at a path; none where its Info.plist can't be read or holds no identifier.
std::optional<FoundBundle> bundle(AppFolders& folders, DurableFiles& files, const std::string& path);

/// The bundles in these folders and in the folders right in them, of each identifier the first.
std::vector<FoundBundle> installedBundles(AppFolders& folders, DurableFiles& files,
                                          const std::vector<std::string>& applicationFolders);

}  // namespace lumenary
