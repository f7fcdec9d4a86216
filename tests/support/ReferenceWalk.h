#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace lumenary {

/// What a slow and obvious walk finds, to compare a scan with.
struct ReferenceWalk {
  std::int64_t totalBytes = 0;
  std::int64_t itemCount = 0;
  std::map<std::string, std::int64_t> folderBytes;  ///< of each folder with all below it
};

/// One thread, whole paths (none beyond PATH_MAX), a file with several names in the folder of its smallest path.
ReferenceWalk referenceWalk(const std::string& root);

}  // namespace lumenary
