#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/FileURL.h"
#include "cleanup/CleanupCatalog.h"
#include "storage/FolderByteTotals.h"

namespace lumenary {

/// Folders of one kind about which a person should decide.
struct LookFirstGroup {
  std::string title;
  std::string what;
  std::string ifRemoved;
  std::optional<std::string> betterWay;
  std::int64_t bytes = 0;
  std::vector<FileURL> urls;

  /// Largest first. A folder inside a listed one, or inside one that must stay, isn't listed.
  static std::vector<LookFirstGroup> groups(const FolderByteTotals& folderTotals, std::string_view home,
                                            const CleanupCatalog& catalog);

  bool operator==(const LookFirstGroup&) const = default;
};

}  // namespace lumenary
