#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/FileReader.h"

namespace lumenary {

/// Name and kind of what stands in a folder, by name.
using FolderNames = std::vector<std::pair<std::string, FileKind>>;

/// A link at the path is followed. More than any folder of apps holds is EFBIG.
SystemResult<FolderNames> folderNames(const FileReader& reader, const std::string& path);

}  // namespace lumenary
