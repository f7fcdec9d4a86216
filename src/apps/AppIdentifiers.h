#pragma once

#include <string>
#include <string_view>
#include <vector>

/// What can be told of an app from the name of a folder.
namespace lumenary {

/// The pieces between the dots, without the empty ones.
std::vector<std::string> identifierPieces(std::string_view identifier);

/// The identifiers that a folder of this name may belong to, the longest first: its pieces joined again, then without
/// the last one, and so on down to three. A name of fewer pieces is its only candidate.
std::vector<std::string> candidateIDs(std::string_view name);

/// In lower case, with nothing but letters, numbers and dots.
std::string normalized(std::string_view text);

/// True for at least three pieces, none empty, the first one of those that identifiers begin with, and no blank.
bool looksLikeBundleID(std::string_view name);

}  // namespace lumenary
