#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "platform/FileReader.h"
#include "platform/MountTable.h"
#include "platform/SystemFacts.h"
#include "platform/ToolRunner.h"
#include "platform/VolumeReader.h"
#include "storage/SystemDataReport.h"
#include "storage/SystemPlaces.h"

namespace lumenary {

/// Explains what no scan of a person's folders can: it reads, and removes nothing. A tool that is missing or hangs, and
/// a place that can't be read, leave their part out or without a size. All references must outlive the value.
class SystemDataScanner {
 public:
  struct Volume {
    std::string name;
    std::string role;
    std::int64_t bytes = 0;

    bool operator==(const Volume&) const = default;
  };

  /// What it asks the system.
  struct Sources {
    const FileReader& reader;
    const ToolRunner& tools;
    const SystemFacts& facts;
    const VolumeReader& volumes;
    const MountTable& mountTable;
  };

  /// `knownSizes`: of paths that were measured already. `measuredBytes`: of everything on the startup volume, by a scan
  /// of it; none without one.
  SystemDataScanner(Sources sources, std::string home, std::map<std::string, std::int64_t, std::less<>> knownSizes,
                    std::optional<std::int64_t> measuredBytes)
      : sources_(sources), home_(std::move(home)), knownSizes_(std::move(knownSizes)), measuredBytes_(measuredBytes) {}

  /// Blocks on tools and walks; a stop request ends the walks early, and what they had isn't told then.
  SystemDataReport scan(std::stop_token stop = {}) const;

  /// The disk of the startup volume from the name of its device: "disk3" from "/dev/disk3s1s1".
  static std::optional<std::string> startupContainer(std::string_view device);
  /// The volumes of that container from the tool's property list; of the first one with a system without a container.
  static std::vector<Volume> startupVolumes(std::string_view fromAPFSList, const std::optional<std::string>& container);
  /// What is known of volumes by their role, from 1 MiB on.
  static std::vector<SystemDataPart> volumeParts(std::span<const Volume> volumes);
  /// The places that exist, from 1 MiB on.
  std::vector<SystemDataPart> locations(std::span<const SystemPlace> places, const std::stop_token& stop) const;
  std::int64_t purgeableBytes() const;

 private:
  struct Measured {
    std::string path;
    const SystemPlace* place = nullptr;
    std::optional<std::int64_t> bytes{};
  };

  std::optional<std::int64_t> sizeOf(const std::string& path, const std::stop_token& stop) const;
  std::string startupDevice() const;
  std::vector<SystemDataPart> unseenParts() const;
  std::int64_t snapshotCount() const;

  Sources sources_;
  std::string home_;
  std::map<std::string, std::int64_t, std::less<>> knownSizes_;
  std::optional<std::int64_t> measuredBytes_;
};

}  // namespace lumenary
