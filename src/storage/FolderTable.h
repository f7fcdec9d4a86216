#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace lumenary {

/// A folder of one scan: its index in the table. A parent's is always smaller than its children's.
using FolderID = std::int32_t;

/// Names with a NUL behind each, in large blocks that are freed together.
class NameArena {
 public:
  /// The copy of a name; it stays where it is as long as the arena.
  const char* keep(std::string_view name);

 private:
  static constexpr std::size_t blockBytes = 64 * 1024;
  std::vector<std::unique_ptr<char[]>> blocks_;
  std::size_t left_ = 0;
  char* next_ = nullptr;
};

/// The whole tree of folders in three parallel arrays: 20 bytes a folder and its name. The arrays come in blocks that
/// never move, so that a folder may be read while another thread adds one, by whoever got its id from the adding
/// thread.
class FolderTable {
 public:
  /// The first folder, the root, is named by its whole path.
  explicit FolderTable(std::string_view rootPath) { add(rootPath, -1); }

  /// One thread at a time. An id that doesn't fit stops the program.
  FolderID add(std::string_view name, FolderID parent);

  FolderID count() const { return count_; }
  const char* name(FolderID id) const { return blockOf(id).names[slotOf(id)]; }
  FolderID parent(FolderID id) const { return blockOf(id).parents[slotOf(id)]; }
  /// The bytes of the files directly in it, and once folded of everything below it.
  std::int64_t& directBytes(FolderID id) const { return blockOf(id).directBytes[slotOf(id)]; }

  /// The absolute path.
  std::string path(FolderID id) const;

  /// Adds each folder's bytes to its parent's. A sum that leaves 64 bits stops the program.
  void foldUpward() const;

  /// The order of two files by their paths, compared name by name from the root down.
  std::strong_ordering comparePaths(FolderID folder, const char* name, FolderID otherFolder,
                                    const char* otherName) const;

 private:
  static constexpr std::size_t blockFolders = 1U << 18U;
  static constexpr std::size_t mostBlocks = (std::size_t{1} << 31U) / blockFolders;

  struct Block {
    std::array<const char*, blockFolders> names;
    std::array<FolderID, blockFolders> parents;
    std::array<std::int64_t, blockFolders> directBytes;
  };

  Block& blockOf(FolderID id) const { return *blocks_[static_cast<std::size_t>(id) / blockFolders]; }
  static std::size_t slotOf(FolderID id) { return static_cast<std::size_t>(id) % blockFolders; }
  std::uint32_t depth(FolderID id) const;

  std::unique_ptr<std::unique_ptr<Block>[]> blocks_ = std::make_unique<std::unique_ptr<Block>[]>(mostBlocks);
  FolderID count_ = 0;
  NameArena names_;
};

}  // namespace lumenary
