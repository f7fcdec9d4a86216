#pragma once

#include <string_view>
#include <unordered_map>
#include <vector>

#include "storage/FolderByteTotals.h"
#include "storage/FolderTable.h"

namespace lumenary {

/// The folders of a scan that are worth a path in its result: from the root down those of 1 MiB and more, in each
/// folder the 40 largest, and beyond these the ones of 50 MiB and more; and whatever stands above a file that is
/// listed.
class ShownFolders {
 public:
  static constexpr std::int64_t smallestTotal = 1'048'576;
  static constexpr std::size_t childrenAlwaysKept = 40;
  static constexpr std::int64_t largeChild = 52'428'800;

  /// The table must be folded upward, and outlive the value.
  explicit ShownFolders(const FolderTable& folders);

  /// The folder's path, which is shown from now on with all above it. The view holds until the next call.
  std::string_view show(FolderID folder);

  FolderByteTotals takeTotals() && { return FolderByteTotals(std::move(shown_)); }

 private:
  std::size_t add(FolderID folder, std::string path);

  const FolderTable& folders_;
  std::unordered_map<FolderID, std::size_t> positions_;  ///< in `shown_`
  std::vector<FolderByteTotals::Folder> shown_;
};

}  // namespace lumenary
