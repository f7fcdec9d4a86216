#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lumenary {

/// Bytes of folders by absolute path: a map in one sorted array, as it is made once and then mostly read.
class FolderByteTotals {
 public:
  struct Folder {
    std::string path;
    std::int64_t bytes = 0;

    bool operator==(const Folder&) const = default;
  };

  FolderByteTotals() = default;
  /// In any order. Of folders with one path the last one counts.
  explicit FolderByteTotals(std::vector<Folder> folders) : folders_(std::move(folders)) {
    if (!std::ranges::is_sorted(folders_, std::ranges::less_equal(), &Folder::path)) {
      sortKeepingLast();
    }
  }

  /// The bytes of a folder; null where it isn't in the map.
  const std::int64_t* find(std::string_view path) const {
    const auto found = positionOf(path);
    return found == folders_.size() ? nullptr : &folders_[found].bytes;
  }
  std::int64_t* find(std::string_view path) {
    const auto found = positionOf(path);
    return found == folders_.size() ? nullptr : &folders_[found].bytes;
  }

  /// Sorted by path.
  auto begin() const { return folders_.begin(); }
  auto end() const { return folders_.end(); }
  std::size_t size() const { return folders_.size(); }

  bool operator==(const FolderByteTotals&) const = default;

 private:
  void sortKeepingLast();
  /// The number of folders where there is none of that path.
  std::size_t positionOf(std::string_view path) const {
    const auto found = std::ranges::lower_bound(folders_, path, {}, &Folder::path);
    const bool isThere = found != folders_.end() && found->path == path;
    return isThere ? static_cast<std::size_t>(found - folders_.begin()) : folders_.size();
  }

  std::vector<Folder> folders_;
};

}  // namespace lumenary
