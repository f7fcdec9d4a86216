#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Date.h"
#include "platform/FileReader.h"
#include "storage/FolderTable.h"
#include "storage/LargestFiles.h"
#include "storage/LinkedFiles.h"
#include "storage/ScanProgress.h"
#include "storage/StorageCategory.h"
#include "storage/StorageScanResult.h"

namespace lumenary {

/// What one worker learned of one folder, or of a part of a large one, with no lock held. The names are those of the
/// entries it was read from.
struct Listing {
  struct HardlinkedFile {
    FileIdentity identity;
    TrackedFile file;
  };

  StorageCategory category = StorageCategory::unclassified;
  std::int64_t fileBytes = 0;  ///< of the files with one name
  std::int64_t itemCount = 0;
  bool hasUnmeasured = false;  ///< something in it could not be looked at
  std::vector<std::string_view> subdirectories;
  std::vector<TrackedFile> bigFiles;
  std::vector<HardlinkedFile> hardlinkedFiles;
  std::vector<std::string_view> skippedPrivate;

  /// Empty again, the memory kept.
  void clear();
};

/// Folders with consecutive ids.
struct FolderRange {
  FolderID begin = 0;
  FolderID end = 0;

  bool isEmpty() const { return begin == end; }
};

/// What a scan knows so far, shared by its workers.
class ScanState {
 public:
  /// `progress` may be empty. `now` is the clock that progress goes by.
  ScanState(std::string_view rootPath, ScanProgressCallback progress, std::function<Date()> now);

  /// Adds what was learned of `folder`; the answer are its subfolders in the listing's order.
  FolderRange record(const Listing& listing, FolderID folder);
  /// The folder could not be read or was left out.
  void recordInaccessible(FolderID folder);

  /// Folders may be read by whoever got their ids from `record`.
  const FolderTable& folders() const { return folders_; }

  /// Once, after the workers have ended.
  StorageScanResult makeResult(const FileURL& root);

 private:
  void count(const TrackedFile& file, std::int64_t bytes);
  void count(const Listing::HardlinkedFile& linked);
  void report(FolderID folder);

  const ScanProgressCallback progress_;
  const std::function<Date()> now_;

  std::mutex mutex_;  ///< guards what follows
  FolderTable folders_;
  LargestFiles bigFiles_{folders_};
  LinkedFiles linkedFiles_{folders_};
  std::vector<std::string> inaccessible_;
  std::int64_t itemCount_ = 0;
  std::int64_t measuredBytes_ = 0;
  CategoryTotals categoryTotals_;
  std::optional<Date> lastReported_;
  FolderID lastFolder_ = 0;
};

}  // namespace lumenary
