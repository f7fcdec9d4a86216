#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/FileURL.h"
#include "base/UUID.h"

namespace lumenary {

/// A folder in which software is written, with what its builds made.
struct DeveloperProject {
  enum class Runtime : std::uint8_t { node, python, swift, other };

  UUID id;  ///< fresh for every scan
  FileURL root;
  std::string name;  ///< the last path component of `root`
  Runtime runtime = Runtime::other;
  std::int64_t artifactBytes = 0;     ///< allocated size of all artifacts, measured during the scan
  std::vector<FileURL> artifactURLs;  ///< in the order of discovery
};

/// The text shown, which is the JSON value as well: "Node.js", "Python", "Swift", "Other".
std::string_view rawValue(DeveloperProject::Runtime runtime);

}  // namespace lumenary
