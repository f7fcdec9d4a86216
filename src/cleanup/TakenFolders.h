#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// What was taken covers all inside of it, so that nothing is taken twice.
namespace lumenary {

/// For going through the folders of a scan in the order of their paths, byte by byte: each folder is asked for before
/// whatever stands in it. Costs a comparison or two a folder.
class TakenFolders {
 public:
  /// True where a folder around the path was taken. The paths must come in their order, and outlive the value.
  bool cover(std::string_view path);
  /// Takes the path that was asked for last.
  void take(std::string_view path) { around_.push_back(path); }

 private:
  std::vector<std::string_view> around_;  ///< those that the path asked for last begins with
};

/// Paths in no order, asked for any of the folders around another one in a single pass over its bytes.
class PathSet {
 public:
  void insert(std::string_view path);
  /// True where the path or a folder around it, the root left out, is in the set.
  bool holdsAround(std::string_view path) const;

 private:
  std::unordered_multimap<std::uint64_t, std::string> paths_;  ///< by their hash
};

/// How many characters a text has; bytes that aren't UTF-8 count one each.
std::size_t characterCount(std::string_view text);

}  // namespace lumenary
