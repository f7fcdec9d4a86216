#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/MountTable.h"
#include "platform/SystemError.h"

namespace lumenary {

struct VolumeCapacity {
  std::int64_t totalBytes = 0;
  std::int64_t availableBytes = 0;  ///< to an ordinary user

  bool operator==(const VolumeCapacity&) const = default;
};

/// What the system knows of volumes. All operations may be called from any thread.
class VolumeReader {
 public:
  virtual ~VolumeReader() = default;

  /// Of the volume that holds the path; links are followed. May wait for a volume that doesn't answer: ask the mount
  /// table first.
  virtual SystemResult<VolumeCapacity> capacity(const std::string& path) const = 0;
  /// The name that a person gave the volume; none where it has none or it isn't known.
  virtual std::optional<std::string> label(const Mount& mount) const = 0;
  /// It can be taken out of the machine.
  virtual bool isRemovable(const Mount& mount) const = 0;
};

}  // namespace lumenary
