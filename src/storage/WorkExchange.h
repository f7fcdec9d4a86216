#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <variant>
#include <vector>

#include "platform/FileReader.h"
#include "storage/FolderTable.h"
#include "storage/PlacesNotEntered.h"
#include "storage/ScanState.h"
#include "storage/StorageCategory.h"

namespace lumenary {

/// A folder that a worker reads, or read, and comes back to for its subfolders.
struct OpenFolder {
  Descriptor descriptor;  ///< empty where it was closed to bound the number of descriptors
  FolderID id = 0;
  std::uint32_t depth = 0;  ///< below the root
  FileIdentity identity;
  bool isIdentified = false;  ///< `identity` could be read
  CategoryMarks marks;
  const PlacesNotEntered* places = nullptr;  ///< null where nothing below may be left out

  /// The same folder, not open.
  OpenFolder closed() const {
    return {.descriptor = {},
            .id = id,
            .depth = depth,
            .identity = identity,
            .isIdentified = isIdentified,
            .marks = marks,
            .places = places};
  }
};

/// Subfolders that wait to be read.
struct PendingFolders {
  OpenFolder around;
  FolderRange range;
};

/// Entries of a huge folder that wait to be looked at.
struct GivenEntries {
  OpenFolder folder;
  FolderScratch scratch;
};

/// Where workers that have too much leave work for those that have none. A worker looks here only when somebody is
/// hungry, and sleeps only here.
class WorkExchange {
 public:
  /// All `workers` count as busy until they first ask for work.
  explicit WorkExchange(unsigned workers) : busy_(workers) {}

  using Work = std::variant<std::monostate, std::vector<PendingFolders>, GivenEntries>;

  /// For a worker that has nothing left: waits until it is given something. Nothing where all is done, or cancelled.
  Work take();

  /// Somebody waits for whom nothing lies here yet.
  bool isSomebodyHungry() const {
    return waiting_.load(std::memory_order_relaxed) > lying_.load(std::memory_order_relaxed);
  }
  /// The entries of a folder are taken ahead of the need, so that nobody waits while the next ones are read.
  bool wantsEntries() const {
    const int lying = lying_.load(std::memory_order_relaxed);
    return lying < entriesAhead && (lying > 0 || waiting_.load(std::memory_order_relaxed) > 0);
  }

  void give(std::vector<PendingFolders> folders);
  void give(GivenEntries entries);

  /// For a worker that never came.
  void leave();
  /// Sends everybody home.
  void cancel();

 private:
  void put(Work work);

  static constexpr int entriesAhead = 2;

  // Changed under the lock; read without it, as a hint.
  std::atomic<int> waiting_ = 0;
  std::atomic<int> lying_ = 0;

  std::mutex mutex_;  ///< guards what follows
  std::condition_variable changed_;
  unsigned busy_;
  bool isOver_ = false;
  std::vector<Work> work_;  ///< `lying_` pieces
};

}  // namespace lumenary
