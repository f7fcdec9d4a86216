#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "storage/FolderByteTotals.h"

/// Going through the folders of a scan from the outside in, so that what was taken covers all inside of it.
namespace lumenary {

struct PathSetHash : std::hash<std::string_view> {
  using is_transparent = void;
};
using PathSet = std::unordered_set<std::string, PathSetHash, std::equal_to<>>;

/// By the number of characters in the path, and equal ones by the path: a folder stands before whatever is in it. The
/// pointers are into `totals`.
std::vector<const FolderByteTotals::Folder*> shortestFirst(const FolderByteTotals& totals);

/// True where the path or a folder around it, the root left out, is in the set.
bool isAnyAround(std::string_view path, const PathSet& paths);

}  // namespace lumenary
