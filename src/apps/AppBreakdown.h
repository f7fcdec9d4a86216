#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "apps/AppFolders.h"
#include "apps/AppInventory.h"
#include "apps/KnownAppData.h"

/// How one folder becomes items that each can be judged by itself.
namespace lumenary {

struct BreakdownRules {
  AppDataKind kind = AppDataKind::support;
  std::span<const AppDataPart> known{};
  std::int64_t minimumBytes = 0;  ///< a smaller folder stays whole
  /// Of a version next to which there is a newer one.
  AppDataVerdict oldVersionVerdict = AppDataVerdict::safe;
};

/// A folder below this is told as a whole.
inline constexpr std::int64_t smallestBrokenDown = std::int64_t{50} * 1024 * 1024;

/// The item for all of what stands at a path, with the words of its kind.
AppDataItem wholeItem(AppFolders& folders, const std::string& path, AppDataKind kind);

/// The parts of a folder: what is known of it, what can be built again, copies of websites, old versions, and the rest.
/// One whole item for what isn't a readable folder.
std::vector<AppDataItem> parts(AppFolders& folders, const std::string& path, const BreakdownRules& rules);

}  // namespace lumenary
