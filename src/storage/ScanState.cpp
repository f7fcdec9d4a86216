#include "storage/ScanState.h"

#include <algorithm>
#include <utility>

#include "base/CheckedSum.h"
#include "base/Path.h"
#include "storage/ShownFolders.h"

namespace lumenary {
namespace {

constexpr auto progressInterval = std::chrono::milliseconds(250);

FileEntry entryOf(const TrackedFile& file, std::string_view folder) {
  return FileEntry{.id = UUID::random(),
                   .url = {.path = appendingPathComponent(folder, file.name), .isFolder = false},
                   .name = file.name,
                   .kind = FileEntry::Kind::file,
                   .byteCount = file.byteCount,
                   .modifiedAt = Date(std::chrono::seconds(file.modifiedSeconds)),
                   .category = file.category,
                   .identity = file.identity};
}

}  // namespace

void Listing::clear() {
  fileBytes = 0;
  itemCount = 0;
  hasUnmeasured = false;
  subdirectories.clear();
  bigFiles.clear();
  hardlinkedFiles.clear();
  skippedPrivate.clear();
}

ScanState::ScanState(std::string_view rootPath, ScanProgressCallback progress, std::function<Date()> now)
    : progress_(std::move(progress)), now_(std::move(now)), folders_(rootPath) {}

FolderRange ScanState::record(const Listing& listing, FolderID folder) {
  const std::scoped_lock guard(mutex_);
  for (const std::string_view name : listing.skippedPrivate) {
    inaccessible_.push_back(appendingPathComponent(folders_.path(folder), name));
  }
  if (listing.hasUnmeasured) {
    inaccessible_.push_back(folders_.path(folder));
  }
  count({.folderID = folder, .category = listing.category}, listing.fileBytes);
  itemCount_ += listing.itemCount;
  for (TrackedFile file : listing.bigFiles) {
    file.folderID = folder;
    bigFiles_.add(file);
  }
  for (Listing::HardlinkedFile linked : listing.hardlinkedFiles) {
    linked.file.folderID = folder;
    count(linked);
  }
  FolderRange added{.begin = folders_.count(), .end = folders_.count()};
  for (const std::string_view name : listing.subdirectories) {
    added.end = folders_.add(name, folder) + 1;
  }
  lastFolder_ = folder;
  report(folder);
  return added;
}

void ScanState::count(const TrackedFile& file, std::int64_t bytes) {
  for (std::int64_t* sum : {&folders_.directBytes(file.folderID), &categoryTotals_[file.category], &measuredBytes_}) {
    *sum = checkedSum(*sum, bytes);
  }
}

void ScanState::count(const Listing::HardlinkedFile& linked) {
  const auto [added, removed] = linkedFiles_.meet(linked.identity, linked.file);
  if (removed != nullptr) {
    count(*removed, -removed->byteCount);
  }
  if (added != nullptr) {
    count(*added, added->byteCount);
  }
}

void ScanState::recordInaccessible(FolderID folder) {
  const std::scoped_lock guard(mutex_);
  inaccessible_.push_back(folders_.path(folder));
}

void ScanState::report(FolderID folder) {
  if (!progress_) {
    return;
  }
  const Date now = now_();
  // A clock that was set back must not silence the rest of the scan.
  const bool isDue = !lastReported_ || now - *lastReported_ > progressInterval || now < *lastReported_;
  if (isDue) {
    lastReported_ = now;
    progress_({.itemCount = itemCount_,
               .currentPath = folders_.path(folder),
               .measuredBytes = measuredBytes_,
               .categoryByteTotals = categoryTotals_});
  }
}

StorageScanResult ScanState::makeResult(const FileURL& root) {
  const std::scoped_lock guard(mutex_);
  folders_.foldUpward();
  for (const TrackedFile& file : linkedFiles_.files()) {
    if (file.byteCount >= LargestFiles::smallestByteCount) {
      bigFiles_.add(file);
    }
  }
  ShownFolders shown(folders_);
  std::vector<FileEntry> entries;
  const std::vector<TrackedFile>& files = bigFiles_.sorted();
  entries.reserve(files.size());
  for (const TrackedFile& file : files) {
    entries.push_back(entryOf(file, shown.show(file.folderID)));
  }
  std::ranges::sort(inaccessible_);
  // A large folder comes in parts.
  const auto repeated = std::ranges::unique(inaccessible_);
  inaccessible_.erase(repeated.begin(), repeated.end());
  lastReported_.reset();
  report(lastFolder_);
  return {.root = root,
          .scannedAt = now_(),
          .totalBytes = measuredBytes_,
          .scannedItemCount = itemCount_,
          .inaccessiblePaths = std::move(inaccessible_),
          .entries = std::move(entries),
          .categoryByteTotals = categoryTotals_,
          .folderByteTotals = std::move(shown).takeTotals()};
}

}  // namespace lumenary
