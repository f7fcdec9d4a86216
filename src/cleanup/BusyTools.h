#pragma once

#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace lumenary {

/// What in the list of processes tells that a group of the plan is in use.
struct InUseMarker {
  std::string title;                 ///< of the group
  std::vector<std::string> markers;  ///< any of them, spelling and case exact
};

/// The product's own table, and the one of Linux beside it.
std::span<const InUseMarker> inUseMarkers();
std::span<const InUseMarker> linuxInUseMarkers();

/// The titles whose markers stand in `processArguments`: the command lines of all processes, one a line.
std::set<std::string, std::less<>> busyTitles(std::string_view processArguments);
/// The same by rows of one's own.
std::set<std::string, std::less<>> busyTitles(std::string_view processArguments, std::span<const InUseMarker> rows);

/// Those of `titles` ("Spotify cache") that are called after an app of which a program runs, told by the name of its
/// file. Only titles that no table knows.
std::set<std::string, std::less<>> busyTitlesByProgram(std::string_view processArguments,
                                                       std::span<const std::string> titles);

}  // namespace lumenary
