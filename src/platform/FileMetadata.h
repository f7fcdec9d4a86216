#pragma once

#include <optional>
#include <span>
#include <string>

#include "base/Date.h"

namespace lumenary {

/// What the desktop and the programs of a person noted about files. Blocks; from any thread.
class FileMetadata {
 public:
  virtual ~FileMetadata() = default;
  /// When one of the files was last opened by an app that notes it; none where none is known to have been. What was
  /// noted is read once a call: ask for all files together.
  virtual std::optional<Date> lastOpened(std::span<const std::string> paths) const = 0;
  /// The host that a file was downloaded from, in lower case and without a leading "www."; none where nobody noted it.
  virtual std::optional<std::string> downloadedFrom(const std::string& path) const = 0;
};

}  // namespace lumenary
