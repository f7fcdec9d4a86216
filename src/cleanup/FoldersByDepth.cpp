#include "cleanup/FoldersByDepth.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "base/Path.h"

namespace lumenary {
namespace {

/// The bytes that don't go on with a character of UTF-8.
std::size_t characterCount(std::string_view text) {
  return static_cast<std::size_t>(
      std::ranges::count_if(text, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80; }));
}

}  // namespace

std::vector<const FolderByteTotals::Folder*> shortestFirst(const FolderByteTotals& totals) {
  std::vector<std::pair<std::size_t, const FolderByteTotals::Folder*>> byLength;
  byLength.reserve(totals.size());
  for (const FolderByteTotals::Folder& folder : totals) {
    byLength.emplace_back(characterCount(folder.path), &folder);
  }
  // The totals stand by path, and so do their addresses.
  std::ranges::sort(byLength);
  std::vector<const FolderByteTotals::Folder*> folders;
  folders.reserve(byLength.size());
  for (const auto& [length, folder] : byLength) {
    folders.push_back(folder);
  }
  return folders;
}

bool isAnyAround(std::string_view path, const PathSet& paths) {
  for (; path.size() > 1; path = parentPath(path)) {
    if (paths.contains(path)) {
      return true;
    }
  }
  return false;
}

}  // namespace lumenary
