#include "storage/LargestFiles.h"

#include <algorithm>
#include <utility>

namespace lumenary {

void LargestFiles::add(const TrackedFile& file) {
  files_.push_back(file);
  files_.back().name = names_.keep(file.name);
  if (files_.size() > highMark) {
    cut();
  }
}

const std::vector<TrackedFile>& LargestFiles::sorted() {
  if (files_.size() > kept) {
    cut();
  }
  std::ranges::sort(files_, [this](const TrackedFile& a, const TrackedFile& b) { return isBefore(a, b); });
  return files_;
}

bool LargestFiles::isBefore(const TrackedFile& a, const TrackedFile& b) const {
  return a.byteCount != b.byteCount ? a.byteCount > b.byteCount
                                    : folders_.comparePaths(a.folderID, a.name, b.folderID, b.name) < 0;
}

void LargestFiles::cut() {
  std::ranges::nth_element(files_, files_.begin() + kept,
                           [this](const TrackedFile& a, const TrackedFile& b) { return isBefore(a, b); });
  files_.resize(kept);
  // The names of those that go make room as well.
  NameArena names;
  for (TrackedFile& file : files_) {
    file.name = names.keep(file.name);
  }
  names_ = std::move(names);
}

}  // namespace lumenary
