#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "storage/StorageKind.h"
#include "storage/StorageNode.h"
#include "storage/StorageScanResult.h"
#include "storage/VolumeSnapshot.h"

/// What the map of a folder shows.
namespace lumenary::StorageMapView {

struct Tile {
  std::string id;                   ///< the node's path, "__rest" or "__unmeasured"
  std::optional<StorageNode> node;  ///< absent for the two tiles that stand for no node; those open nothing
  std::string title;
  std::int64_t bytes = 0;
  StorageKind kind = StorageKind::other;

  bool operator==(const Tile&) const = default;
};

/// The map's inputs; the result must outlive the value.
struct Folder {
  const StorageScanResult& result;
  std::string path;
  std::string selectedDrive;               ///< its mount point
  std::optional<VolumeSnapshot> snapshot;  ///< of the selected drive
};

/// The largest 24 children, largest first; then one for the rest, and one for what nobody measured, where they matter.
std::vector<Tile> tiles(const Folder& folder);

/// What the drive says is in use beyond what the scan of it measured; 0 where that is noise, or another folder is
/// shown.
std::int64_t unmeasuredBytes(const Folder& folder);

}  // namespace lumenary::StorageMapView
