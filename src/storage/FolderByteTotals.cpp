#include "storage/FolderByteTotals.h"

#include "base/StableSort.h"

namespace lumenary {

void FolderByteTotals::sortKeepingLast() {
  std::ranges::reverse(folders_);
  folders_ = stableSorted(std::move(folders_), [](const Folder& folder) { return std::string_view(folder.path); });
  const auto repeated = std::ranges::unique(folders_, {}, &Folder::path);
  folders_.erase(repeated.begin(), repeated.end());
}

}  // namespace lumenary
