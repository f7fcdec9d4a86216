#pragma once

#include <cstdint>
#include <expected>
#include <functional>
#include <stop_token>
#include <string>
#include <string_view>

#include "base/Date.h"
#include "platform/FileReader.h"
#include "platform/MountTable.h"
#include "platform/Places.h"
#include "storage/FolderByteTotals.h"
#include "storage/ScanProgress.h"
#include "storage/StorageCategory.h"
#include "storage/StorageScanResult.h"

namespace lumenary {

enum class StorageScannerError : std::uint8_t { rootUnavailable, cancelled };

/// The sentence for a person.
std::string_view message(StorageScannerError error);

/// Measures a whole volume or one folder without looking into any file.
class StorageScanner {
 public:
  /// All references must outlive the value. `processors` is how many the machine has: a third of them work, at least 2
  /// and at most 3, as the disk is the bound and the machine must stay usable.
  StorageScanner(const FileReader& reader, const MountTable& mountTable, const Places& places,
                 std::function<Date()> now, unsigned processors)
      : reader_(reader), mountTable_(mountTable), places_(places), now_(std::move(now)), processors_(processors) {}

  /// Reads everything at and below the folder `root`, on threads of its own, and blocks until they have ended. Links
  /// are never followed, and no other volume is entered. Counted are the blocks of regular files, a file with several
  /// names once, in the folder of its smallest path; the result doesn't depend on the order in which threads come to
  /// things. A byte sum that leaves 64 bits stops the program.
  std::expected<StorageScanResult, StorageScannerError> scan(const std::string& root,
                                                             const ScanProgressCallback& progress = {},
                                                             const std::stop_token& stop = {}) const;

  /// The category of a file or folder by its path alone.
  static StorageCategory category(std::string_view path);

  /// After a removal: adds `delta` to the folder at `path` and to all above it up to `root`, as far as `totals` holds
  /// them; none falls below 0.
  static void addToAncestors(std::int64_t delta, std::string_view path, std::string_view root,
                             FolderByteTotals& totals);

 private:
  const FileReader& reader_;
  const MountTable& mountTable_;
  const Places& places_;
  std::function<Date()> now_;
  unsigned processors_;
};

}  // namespace lumenary
