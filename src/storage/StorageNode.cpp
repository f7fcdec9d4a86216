#include "storage/StorageNode.h"

namespace lumenary {

FileEntry StorageNode::asEntry() const {
  if (file) {
    return *file;
  }
  return FileEntry{.id = UUID::random(),
                   .url = {.path = path, .isFolder = true},
                   .name = name,
                   .kind = FileEntry::Kind::directory,
                   .byteCount = byteCount,
                   .modifiedAt = {},
                   .category = CategoryMarks::of(path).category(name)};
}

}  // namespace lumenary
