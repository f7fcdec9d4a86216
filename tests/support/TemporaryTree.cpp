#include "support/TemporaryTree.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <tuple>

namespace lumenary {
namespace {

namespace fs = std::filesystem;

void require(bool holds, const std::string& path) {
  if (!holds) {
    throw std::system_error(errno, std::generic_category(), path);
  }
}

/// In memory where there is room for it: the deep chains take a second there, and half a minute on a busy disk.
fs::path placeForTrees() {
  const fs::path inMemory = "/dev/shm";
  std::error_code missing;
  const bool hasRoom = fs::space(inMemory, missing).available > 256'000'000 && !missing;
  const bool isChosen = std::getenv("TMPDIR") == nullptr && hasRoom && ::access(inMemory.c_str(), W_OK) == 0;
  return isChosen ? inMemory : fs::temp_directory_path();
}

void setDate(const std::string& path, Date date) {
  const auto whole = std::chrono::floor<std::chrono::seconds>(date);
  const timespec stamp{whole.time_since_epoch().count(), std::chrono::nanoseconds(date - whole).count()};
  const timespec stamps[] = {stamp, stamp};
  require(::utimensat(AT_FDCWD, path.c_str(), stamps, AT_SYMLINK_NOFOLLOW) == 0, path);
}

}  // namespace

TemporaryTree::TemporaryTree() : root_(fs::canonical(placeForTrees()) / "lumenary-test-XXXXXX") {
  require(::mkdtemp(root_.data()) != nullptr, root_);
}

TemporaryTree::~TemporaryTree() {
  std::error_code failed;
  fs::remove_all(root_, failed);
  if (failed) {  // A folder is closed, or the descriptors are too few for the depth.
    std::ignore = std::system(("chmod -R u+rwx '" + root_ + "'; rm -rf '" + root_ + "'").c_str());
  }
}

std::string TemporaryTree::path(std::string_view relative) const {
  return relative.empty() ? root_ : root_ + "/" + std::string(relative);
}

void TemporaryTree::build(std::initializer_list<TreeEntry> entries) {
  for (const TreeEntry& entry : entries) {
    make(path(entry.path), entry);
  }
}

void TemporaryTree::make(const std::string& made, const TreeEntry& entry) {
  fs::create_directories(fs::path(made).parent_path());
  switch (entry.kind) {
    case TreeEntry::Kind::folder:
      break;
    case TreeEntry::Kind::file:
      require(bool(std::ofstream(made, std::ios::binary) << entry.data << std::flush), made);
      break;
    case TreeEntry::Kind::link:
      fs::create_symlink(entry.data, made);
      break;
    case TreeEntry::Kind::hardLink:
      fs::create_hard_link(path(entry.data), made);
      break;
  }
  if (entry.modified) {
    setDate(made, *entry.modified);
  }
}

void TemporaryTree::buildChain(std::size_t depth, std::initializer_list<TreeEntry> inEachFolder) {
  // From the innermost folder outwards, so that no path gets long.
  for (std::size_t level = 0; level < depth; ++level) {
    fs::create_directory(path("around"));
    if (level > 0) {
      fs::rename(path("d"), path("around/d"));
    }
    fs::rename(path("around"), path("d"));
    for (const TreeEntry& entry : inEachFolder) {
      make(path("d/" + entry.path), entry);
    }
  }
}

void TemporaryTree::remove(std::string_view relative) { fs::remove_all(path(relative)); }

void TemporaryTree::rename(std::string_view from, std::string_view to) { fs::rename(path(from), path(to)); }

void TemporaryTree::setModified(std::string_view relative, Date date) { setDate(path(relative), date); }

void TemporaryTree::setAllModified(std::string_view relative, Date date) {
  setModified(relative, date);
  for (const auto& entry : fs::recursive_directory_iterator(path(relative))) {
    setDate(entry.path(), date);
  }
}

std::int64_t TemporaryTree::allocatedBytes(std::initializer_list<std::string_view> relatives) const {
  std::int64_t sum = 0;
  for (const std::string_view relative : relatives) {
    struct stat found{};
    require(::lstat(path(relative).c_str(), &found) == 0, path(relative));
    sum += found.st_blocks * 512;
  }
  return sum;
}

}  // namespace lumenary
