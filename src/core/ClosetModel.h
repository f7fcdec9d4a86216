#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/Rectangle.h"
#include "base/UUID.h"
#include "cleanup/StorageTrashGate.h"
#include "storage/AppDataVerdict.h"
#include "storage/StorageIndex.h"
#include "storage/StorageScanResult.h"
#include "storage/VolumeSnapshot.h"

namespace lumenary {

/// A thing in the closet.
struct ClosetNode {
  enum class Source : std::uint8_t { category, folder, file, remainder, unmeasured, duplicates };

  std::string id;  ///< the path of a folder, otherwise a word
  std::string title;
  std::int64_t bytes = 0;
  StorageCategory category = StorageCategory::unclassified;
  Source source = Source::category;
  std::optional<StorageNode> storageNode{};  ///< the folder or file behind it

  /// What removing it would come to.
  AppDataVerdict verdict(const StorageTrashGate& gate) const;
  /// One sentence on what it is.
  std::string_view explanation() const;
  /// The file itself, or a record that stands for the folder.
  std::optional<FileEntry> entry() const;

  bool operator==(const ClosetNode&) const = default;
};

/// The disk as a closet, in which width is size: apps hang on two rails, folders lie on three shelves, the system's
/// things stand in a cabinet, caches lie on the floor, what couldn't be measured is a sealed box, and free space is the
/// empty stretch of the last shelf. Never changed once it is made; it shares the tree of the scan.
struct ClosetModel {
  struct Placed {
    ClosetNode node;
    double fraction = 0;  ///< of its row's width

    bool operator==(const Placed&) const = default;
  };
  struct Row {
    std::size_t id = 0;  ///< its place, from 0
    std::vector<Placed> items{};
    std::int64_t capacityBytes = 0;
    double freeFraction = 0;
    std::int64_t freeBytes = 0;

    bool operator==(const Row&) const = default;
  };
  /// The listed folders of a category, largest first; they belong to the tree.
  using Folders = std::vector<const StorageNode*>;

  ClosetModel(const StorageScanResult& result, const VolumeSnapshot& volume, const StorageTrashGate& gate);

  UUID revisionID = UUID::random();  ///< tells two models apart
  std::vector<Row> rails;
  std::vector<Row> shelves;
  ClosetNode cabinet;
  ClosetNode sealed;
  ClosetNode floor;
  std::int64_t totalBytes = 0;
  std::int64_t usedBytes = 0;
  std::int64_t availableBytes = 0;
  CategoryTotals categoryTotals;
  const StorageIndex::Children& childrenByParent() const { return *children_; }
  std::map<StorageCategory, Folders> foldersByCategory;
  std::vector<ClosetNode> quickWins;  ///< folders that come back by themselves

  /// What opening a node shows, at most `limit` things and what is left over.
  std::vector<ClosetNode> children(const ClosetNode& node, std::size_t limit) const;
  bool canOpen(const ClosetNode& node) const;
  /// A node for each category in which there is something.
  std::vector<ClosetNode> drawerRoot() const;

  /// The first of `nodes`, which come largest first: none in another, none a home or at the top of the disk. `homes` is
  /// the folder in which homes stand, beside "/Users".
  static Folders rootFolders(std::span<const StorageNode* const> nodes, std::size_t limit, std::int64_t minimumBytes,
                             std::string_view homes);
  /// Lays nodes into rows of like length, in their order.
  static std::vector<Row> pack(std::vector<ClosetNode> nodes, std::size_t rows, std::int64_t freeBytes);

  struct Slots {
    std::vector<double> widths;  ///< one a size, shares of the rail
    double freeShare = 0;
  };
  /// Widths that a person can hit: none below `minFraction`, all together and the free share 1.
  static Slots railSlots(std::span<const std::int64_t> sizes, std::int64_t freeBytes, double minFraction);
  /// Boxes inside a box, by size.
  static std::vector<std::pair<ClosetNode, Rectangle>> slice(std::span<const ClosetNode> nodes,
                                                             const Rectangle& bounds);

 private:
  void hangApps();
  void layFolders();
  std::int64_t total(StorageCategory category) const;

  std::shared_ptr<StorageIndex> index_;
  const StorageIndex::Children* children_ = nullptr;
  std::string homes_;
};

}  // namespace lumenary
