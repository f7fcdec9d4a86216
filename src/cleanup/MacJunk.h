#pragma once

#include <cstddef>
#include <stop_token>
#include <string>
#include <vector>

#include "platform/FileReader.h"
#include "storage/FileEntry.h"

namespace lumenary {

/// How many entries a walk for leftovers gives at most.
inline constexpr std::size_t macJunkLimit = 50'000;

/// What Finder left on a drive: ".DS_Store" and the "._" companions of files. Walks the whole drive without looking
/// into apps and photo libraries, and without entering what is mounted on it; a folder that can't be opened is passed
/// over. Empty for "/". After a stop request what was found so far. Blocks.
std::vector<FileEntry> macJunk(const FileReader& reader, const std::string& volume, std::size_t limit,
                               const std::stop_token& stop = {});

}  // namespace lumenary
