#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/FileURL.h"
#include "platform/FileReader.h"
#include "platform/MountTable.h"
#include "platform/Places.h"
#include "platform/VolumeReader.h"
#include "storage/VolumeSnapshot.h"

namespace lumenary {

/// A drive that can be offered for scanning.
struct DriveInfo {
  FileURL url;  ///< where it is mounted
  std::string name;
  bool isStartup = false;
  bool isRemovable = false;

  bool operator==(const DriveInfo&) const = default;
};

/// Where drives that a person plugs in or adds are mounted: local ones below the folders for them, the one that holds
/// the person's home left out.
std::vector<std::string> drivesOfPerson(const std::vector<Mount>& mounts, const Places& places);

/// How big and how full volumes are, and which there are, without a scan. All references must outlive the value.
class VolumeMetricsService {
 public:
  VolumeMetricsService(const FileReader& reader, const VolumeReader& volumes, const MountTable& mountTable,
                       const Places& places)
      : reader_(reader), volumes_(volumes), mountTable_(mountTable), places_(places) {}

  /// The volume that holds the path. None where it can't be read, or might not answer: network and userspace file
  /// systems are not asked.
  std::optional<VolumeSnapshot> capture(const std::string& path) const;

  /// The startup drive first, the others by name: the one that holds the person's home, and what is mounted where
  /// drives are. Never a network volume, and none twice.
  std::vector<DriveInfo> mountedDrives() const;

 private:
  const FileReader& reader_;
  const VolumeReader& volumes_;
  const MountTable& mountTable_;
  const Places& places_;
};

}  // namespace lumenary
