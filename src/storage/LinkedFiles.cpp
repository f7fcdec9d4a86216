#include "storage/LinkedFiles.h"

namespace lumenary {

LinkedFiles::Change LinkedFiles::meet(const FileIdentity& identity, const TrackedFile& file) {
  const auto [index, isNew] = identities_.insert(identity);
  if (isNew) {
    files_.push_back(file);
    files_.back().name = names_.keep(file.name);
    return {.added = &files_.back(), .removed = nullptr};
  }
  TrackedFile& known = files_[index];
  if (folders_.comparePaths(file.folderID, file.name, known.folderID, known.name) >= 0) {
    return {};
  }
  removed_ = known;
  known.folderID = file.folderID;
  known.category = file.category;
  known.name = names_.keep(file.name);
  return {.added = &known, .removed = &removed_};
}

}  // namespace lumenary
