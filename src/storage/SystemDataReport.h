#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/FileURL.h"
#include "storage/AppDataVerdict.h"

namespace lumenary {

/// Something that takes up space outside of a person's folders.
struct SystemDataPart {
  std::string title;
  std::string explanation;
  std::optional<std::int64_t> bytes{};  ///< missing where it is there and can't be measured, or not in full
  AppDataVerdict verdict = AppDataVerdict::keep;
  std::optional<FileURL> url{};  ///< of a place

  bool operator==(const SystemDataPart&) const = default;
};

struct SystemDataReport {
  std::vector<SystemDataPart> volumes{};    ///< what isn't a place: parts of the disk, and what the system itself holds
  std::vector<SystemDataPart> locations{};  ///< the largest first, those that can't be measured last
  std::int64_t dataVolumeBytes = 0;
  std::int64_t snapshotCount = 0;
  std::int64_t purgeableBytes = 0;  ///< what the system would clear away by itself

  bool operator==(const SystemDataReport&) const = default;
};

}  // namespace lumenary
