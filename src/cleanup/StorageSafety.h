#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "cleanup/CleanupCatalog.h"
#include "storage/StorageNode.h"

namespace lumenary {

/// How safe it is to remove one thing that a person looks at, with the reason in a sentence. It only advises: the gates
/// run again at the move.
struct StorageSafety {
  enum class Level : std::uint8_t { safe, rebuild, review, keep };  ///< in rising order of caution
  static constexpr Level allLevels[] = {Level::safe, Level::rebuild, Level::review, Level::keep};

  Level level = Level::keep;
  std::string reason;

  /// What the rule asks of the disk, so that it can run without one.
  using FileExists = std::function<bool(const std::string& path)>;
  using CanMove = std::function<bool(const FileEntry& entry)>;

  /// `safe` is given only to what the catalog calls rebuildable. May ask `fileExists` a few times. From any thread.
  static StorageSafety classify(const StorageNode& node, std::string_view home, const CleanupCatalog& catalog,
                                const FileExists& fileExists, const CanMove& canMove);

  bool operator==(const StorageSafety&) const = default;
};

}  // namespace lumenary
