#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

#include "platform/FileReader.h"

/// The one measuring walk of a path.
namespace lumenary {

struct Measurement {
  std::int64_t allocatedBytes = 0;
  bool holdsForeignFolder = false;  ///< a folder of another user stands in it or is it
  bool holdsUnchangeable = false;   ///< something marked immutable or append-only stands in it or is it
  bool holdsUnreadable = false;     ///< a folder that could not be read stands in it or is it: there may be more

  bool operator==(const Measurement&) const = default;
};

/// Adds up the allocated size of everything at and below `path` but the folders themselves. Links are not followed, no
/// other volume is entered, and a file with several names counts once in this walk. What can't be read adds nothing; a
/// path that can't be opened measures 0. `userID` tells whose folders are foreign; nothing is foreign to user 0.
/// A stop request ends the walk early with what it has.
Measurement measure(const FileReader& reader, const std::string& path, std::uint32_t userID, std::stop_token stop = {});

/// As above, from an opened item: what is measured is what stands under that name in that opened parent.
Measurement measure(const FileReader& reader, const Descriptor& parent, const char* name, std::uint32_t userID,
                    std::stop_token stop = {});

/// `measure` without the other findings.
std::int64_t allocatedSize(const FileReader& reader, const std::string& path, std::stop_token stop = {});

/// The allocated size of each path, in the order of the paths, measured on two threads. The result is the same as
/// measuring them one by one. `measured` is called from either thread, one call at a time, with how many are done.
std::vector<std::int64_t> allocatedSizes(const FileReader& reader, std::span<const std::string> paths,
                                         std::stop_token stop = {},
                                         const std::function<void(std::size_t)>& measured = {});

}  // namespace lumenary
