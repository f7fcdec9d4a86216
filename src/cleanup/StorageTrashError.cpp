#include "cleanup/StorageTrashError.h"

namespace lumenary {

std::string_view description(StorageTrashError error) {
  switch (error) {
    case StorageTrashError::missing:
      return "The file is no longer at this location.";
    case StorageTrashError::notAFile:
      return "This item changed type after the scan. Scan again before removing it.";
    case StorageTrashError::symbolicLink:
      return "Shortcuts and symbolic links are protected.";
    case StorageTrashError::protectedPath:
      return "Hearthkeep protects system files and files outside your account.";
    case StorageTrashError::changedSize:
      return "The file changed after the scan. Scan again before removing it.";
    case StorageTrashError::notPermitted:
      return "macOS doesn't allow Hearthkeep to remove this. It may belong to another user or the system.";
  }
  return {};
}

}  // namespace lumenary
