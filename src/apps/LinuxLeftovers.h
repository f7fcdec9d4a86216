#pragma once

#include <functional>
#include <string>
#include <vector>

#include "apps/AppLayout.h"
#include "apps/SeenApps.h"
#include "base/Date.h"
#include "platform/AppRegistry.h"
#include "platform/FileReader.h"

namespace lumenary {

/// What is needed to tell what removed apps left on Linux.
struct LinuxLeftovers {
  const FileReader& reader;
  const AppRegistry& registry;
  std::vector<SeenApp> seen;
  Date now;
  /// Whether a program has something open at or below a path. Must be set.
  std::function<bool(const std::string& path)> isOpen;
  std::vector<std::string>
      programFolders{};  ///< where programs stand: one that is called so may have come from elsewhere
};

/// Certain cases only: the container of a Flatpak or snap that is installed nowhere, and a folder called exactly like
/// an app that was seen installed, is installed nowhere now, and whose folder nothing was written to for 90 days. Any
/// other folder that no app owns has an unknown owner; it isn't a leftover. Neither is a link, or what a link beside it
/// leads to, or what is open. The references must live as long as the rule.
LeftoverRule linuxLeftoverRule(LinuxLeftovers inputs);

}  // namespace lumenary
