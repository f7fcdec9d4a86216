#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "platform/VolumeReader.h"

namespace lumenary {

/// Capacities by statvfs, labels by the links that udev makes for them, and what sysfs says of a disk.
class LinuxVolumeReader final : public VolumeReader {
 public:
  /// The folders to look into, which differ in tests.
  explicit LinuxVolumeReader(std::string devices = "/dev", std::string blockDevices = "/sys/dev/block")
      : devices_(std::move(devices)), blockDevices_(std::move(blockDevices)) {}

  SystemResult<VolumeCapacity> capacity(const std::string& path) const override;
  std::optional<std::string> label(const Mount& mount) const override;
  bool isRemovable(const Mount& mount) const override;

 private:
  bool isDevice(std::string_view source) const;

  std::string devices_;
  std::string blockDevices_;
};

/// The label behind a name that udev wrote: each byte it found odd is \xNN.
std::string labelOfLinkName(std::string_view name);

}  // namespace lumenary
