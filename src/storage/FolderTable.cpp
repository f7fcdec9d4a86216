#include "storage/FolderTable.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "base/CheckedSum.h"

namespace lumenary {

const char* NameArena::keep(std::string_view name) {
  const std::size_t needed = name.size() + 1;
  if (needed > left_) {
    left_ = std::max(needed, blockBytes);
    blocks_.push_back(std::make_unique_for_overwrite<char[]>(left_));
    next_ = blocks_.back().get();
  }
  char* const kept = next_;
  name.copy(kept, name.size());
  kept[name.size()] = '\0';
  next_ += needed;
  left_ -= needed;
  return kept;
}

FolderID FolderTable::add(std::string_view name, FolderID parent) {
  if (count_ == std::numeric_limits<FolderID>::max()) {
    std::fputs("Lumenary: a scan met more folders than it can number.\n", stderr);
    std::abort();
  }
  const FolderID id = count_++;
  if (slotOf(id) == 0) {
    blocks_[static_cast<std::size_t>(id) / blockFolders] = std::make_unique_for_overwrite<Block>();
  }
  Block& block = blockOf(id);
  block.names[slotOf(id)] = names_.keep(name);
  block.parents[slotOf(id)] = parent;
  block.directBytes[slotOf(id)] = 0;
  return id;
}

std::string FolderTable::path(FolderID id) const {
  // Filled from its end: a chain of thousands of folders costs one pass over its names.
  std::size_t length = 0;
  for (FolderID folder = id; folder > 0; folder = parent(folder)) {
    length += 1 + std::strlen(name(folder));
  }
  const std::string_view root = name(0);
  const std::string_view leading = root == "/" && id > 0 ? "" : root;
  std::string path(leading);
  path.resize(leading.size() + length);
  std::size_t end = path.size();
  for (FolderID folder = id; folder > 0; folder = parent(folder)) {
    const std::string_view component = name(folder);
    end -= component.size();
    component.copy(path.data() + end, component.size());
    path[--end] = '/';
  }
  return path;
}

void FolderTable::foldUpward() const {
  for (FolderID id = count_ - 1; id > 0; --id) {
    std::int64_t& total = directBytes(parent(id));
    total = checkedSum(total, directBytes(id));
  }
}

std::uint32_t FolderTable::depth(FolderID id) const {
  std::uint32_t depth = 0;
  for (; id > 0; id = parent(id)) {
    ++depth;
  }
  return depth;
}

std::strong_ordering FolderTable::comparePaths(FolderID folder, const char* name, FolderID otherFolder,
                                               const char* otherName) const {
  const auto climb = [this](FolderID& id, const char*& below) {
    below = this->name(id);
    id = parent(id);
  };
  std::uint32_t level = depth(folder);
  std::uint32_t otherLevel = depth(otherFolder);
  for (; level > otherLevel; --level) {
    climb(folder, name);
  }
  for (; otherLevel > level; --otherLevel) {
    climb(otherFolder, otherName);
  }
  while (folder != otherFolder) {
    climb(folder, name);
    climb(otherFolder, otherName);
  }
  return std::strcmp(name, otherName) <=> 0;
}

}  // namespace lumenary
