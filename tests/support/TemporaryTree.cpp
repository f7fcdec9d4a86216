#include "support/TemporaryTree.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>
#include <tuple>
#include <utility>

namespace lumenary {
namespace {

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

void require(bool holds, std::string_view act, std::string_view path) {
  if (holds) {
    return;
  }
  std::fprintf(stderr, "A temporary tree can't %s %s: %s\n", std::string(act).c_str(), std::string(path).c_str(),
               std::strerror(errno));
  std::abort();
}

/// In memory where there is room for it: the deep chains take a second there, and half a minute on a busy disk.
std::filesystem::path placeForTrees() {
  constexpr const char* inMemory = "/dev/shm";
  std::error_code missing;
  const bool hasRoom = std::filesystem::space(inMemory, missing).available > 256'000'000 && !missing;
  const bool isChosen = std::getenv("TMPDIR") == nullptr && hasRoom && ::access(inMemory, W_OK) == 0;
  return isChosen ? inMemory : std::filesystem::temp_directory_path();
}

/// Where a thing stands: the open folder around it and its name there.
struct Place {
  Descriptor parent;
  std::string name;
};

/// Goes down component by component, so that a path may be longer than the system takes at once.
Place placeOf(const Descriptor& root, std::string_view path, bool makesFolders) {
  while (path.ends_with('/')) {
    path.remove_suffix(1);
  }
  Place place{Descriptor(::openat(root.number(), ".", folderFlags)), "."};
  while (!path.empty()) {
    if (place.name != ".") {
      if (makesFolders) {
        ::mkdirat(place.parent.number(), place.name.c_str(), 0755);
      }
      place.parent = Descriptor(::openat(place.parent.number(), place.name.c_str(), folderFlags));
    }
    require(bool(place.parent), "open the folder around", path);
    place.name = path.substr(0, path.find('/'));
    path.remove_prefix(std::min(place.name.size() + 1, path.size()));
  }
  return place;
}

std::vector<std::string> namesIn(const Descriptor& folder) {
  std::vector<std::string> names;
  const std::unique_ptr<DIR, int (*)(DIR*)> listing(::fdopendir(::openat(folder.number(), ".", folderFlags)),
                                                    ::closedir);
  require(bool(listing), "list", "a folder");
  while (const dirent* entry = ::readdir(listing.get())) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") {
      names.emplace_back(name);
    }
  }
  return names;
}

/// Removes what is in the folder. Folders are not gone down into: their own folders are moved up beside them first, so
/// that the depth of the tree doesn't matter.
void removeContents(const Descriptor& folder) {
  std::size_t moved = 0;
  for (std::vector<std::string> names = namesIn(folder); !names.empty(); names = namesIn(folder)) {
    for (const std::string& name : names) {
      if (::unlinkat(folder.number(), name.c_str(), 0) == 0) {
        continue;
      }
      std::ignore = ::fchmodat(folder.number(), name.c_str(), 0700, 0);
      const Descriptor child(::openat(folder.number(), name.c_str(), folderFlags));
      require(bool(child), "open", name);
      for (const std::string& inner : namesIn(child)) {
        if (::unlinkat(child.number(), inner.c_str(), 0) == 0) {
          continue;
        }
        std::ignore = ::fchmodat(child.number(), inner.c_str(), 0700, 0);
        const std::string free = ".removed-" + std::to_string(moved++);
        require(::renameat(child.number(), inner.c_str(), folder.number(), free.c_str()) == 0, "move", inner);
      }
      require(::unlinkat(folder.number(), name.c_str(), AT_REMOVEDIR) == 0, "remove", name);
    }
  }
}

timespec stampOf(Date date) {
  const auto whole = std::chrono::floor<std::chrono::seconds>(date);
  return {.tv_sec = whole.time_since_epoch().count(), .tv_nsec = std::chrono::nanoseconds(date - whole).count()};
}

void setDate(int parent, const char* name, Date date) {
  const timespec stamps[2] = {stampOf(date), stampOf(date)};
  require(::utimensat(parent, name, stamps, AT_SYMLINK_NOFOLLOW) == 0, "date", name);
}

void setDatesBelow(const Descriptor& parent, const std::string& name, Date date) {
  if (const Descriptor folder(::openat(parent.number(), name.c_str(), folderFlags)); folder) {
    for (const std::string& inner : namesIn(folder)) {
      setDatesBelow(folder, inner, date);
    }
  }
  setDate(parent.number(), name.c_str(), date);
}

void writeFile(int parent, const char* name, std::string_view bytes) {
  const Descriptor file(::openat(parent, name, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644));
  require(bool(file), "make", name);
  while (!bytes.empty()) {
    const ssize_t written = ::write(file.number(), bytes.data(), bytes.size());
    require(written > 0, "write", name);
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

void make(const Descriptor& root, const Place& place, const TreeEntry& entry) {
  const int parent = place.parent.number();
  const char* name = place.name.c_str();
  switch (entry.kind) {
    case TreeEntry::Kind::folder:
      require(::mkdirat(parent, name, 0755) == 0 || errno == EEXIST, "make", entry.path);
      break;
    case TreeEntry::Kind::file:
      writeFile(parent, name, entry.data);
      break;
    case TreeEntry::Kind::link:
      require(::symlinkat(entry.data.c_str(), parent, name) == 0, "link", entry.path);
      break;
    case TreeEntry::Kind::hardLink: {
      const Place other = placeOf(root, entry.data, false);
      require(::linkat(other.parent.number(), other.name.c_str(), parent, name, 0) == 0, "link", entry.path);
      break;
    }
  }
  if (entry.modified) {
    setDate(parent, name, *entry.modified);
  }
}

}  // namespace

TreeEntry::TreeEntry(std::string_view treePath, std::optional<Date> date)
    : path(treePath), kind(path.ends_with('/') ? Kind::folder : Kind::file), modified(date) {}

TreeEntry::TreeEntry(std::string_view treePath, int byteCount, std::optional<Date> date)
    : path(treePath), data(static_cast<std::size_t>(byteCount), 'x'), modified(date) {}

TreeEntry::TreeEntry(std::string_view treePath, Content content, std::optional<Date> date)
    : path(treePath), data(std::move(content.bytes)), modified(date) {}

TreeEntry::TreeEntry(std::string_view treePath, LinkTo link, std::optional<Date> date)
    : path(treePath), kind(Kind::link), data(std::move(link.target)), modified(date) {}

TreeEntry::TreeEntry(std::string_view treePath, HardLinkTo link)
    : path(treePath), kind(Kind::hardLink), data(std::move(link.path)) {}

TemporaryTree::TemporaryTree() {
  std::string pattern = std::filesystem::canonical(placeForTrees()) / "lumenary-test-XXXXXX";
  require(::mkdtemp(pattern.data()) != nullptr, "make", pattern);
  root_ = pattern;
  folder_ = Descriptor(::open(root_.c_str(), folderFlags));
  require(bool(folder_), "open", root_);
}

TemporaryTree::TemporaryTree(std::initializer_list<TreeEntry> entries) : TemporaryTree() { build(entries); }

TemporaryTree::~TemporaryTree() {
  ::fchmod(folder_.number(), 0700);
  removeContents(folder_);
  ::rmdir(root_.c_str());
}

std::string TemporaryTree::path(std::string_view relative) const {
  return relative.empty() ? root_ : root_ + "/" + std::string(relative);
}

void TemporaryTree::build(std::initializer_list<TreeEntry> entries) {
  for (const TreeEntry& entry : entries) {
    make(folder_, placeOf(folder_, entry.path, true), entry);
  }
}

void TemporaryTree::buildChain(std::size_t depth, std::initializer_list<TreeEntry> inEachFolder) {
  Descriptor around(::openat(folder_.number(), ".", folderFlags));
  for (std::size_t level = 0; level < depth; ++level) {
    require(::mkdirat(around.number(), "d", 0755) == 0, "make", "a folder of a chain");
    around = Descriptor(::openat(around.number(), "d", folderFlags));
    for (const TreeEntry& entry : inEachFolder) {
      make(around, placeOf(around, entry.path, true), entry);
    }
  }
}

void TemporaryTree::remove(std::string_view relative) {
  const Place place = placeOf(folder_, relative, false);
  if (::unlinkat(place.parent.number(), place.name.c_str(), 0) == 0) {
    return;
  }
  const Descriptor folder(::openat(place.parent.number(), place.name.c_str(), folderFlags));
  require(bool(folder), "open", relative);
  removeContents(folder);
  require(::unlinkat(place.parent.number(), place.name.c_str(), AT_REMOVEDIR) == 0, "remove", relative);
}

void TemporaryTree::rename(std::string_view from, std::string_view to) {
  const Place before = placeOf(folder_, from, false);
  const Place after = placeOf(folder_, to, true);
  require(::renameat(before.parent.number(), before.name.c_str(), after.parent.number(), after.name.c_str()) == 0,
          "rename", from);
}

void TemporaryTree::setModified(std::string_view relative, Date date) {
  const Place place = placeOf(folder_, relative, false);
  setDate(place.parent.number(), place.name.c_str(), date);
}

void TemporaryTree::setAllModified(std::string_view relative, Date date) {
  const Place place = placeOf(folder_, relative, false);
  setDatesBelow(place.parent, place.name, date);
}

std::int64_t TemporaryTree::allocatedBytes(std::initializer_list<std::string_view> relatives) const {
  std::int64_t sum = 0;
  for (const std::string_view relative : relatives) {
    const Place place = placeOf(folder_, relative, false);
    struct stat found{};
    require(::fstatat(place.parent.number(), place.name.c_str(), &found, AT_SYMLINK_NOFOLLOW) == 0, "measure",
            relative);
    sum += found.st_blocks * 512;
  }
  return sum;
}

}  // namespace lumenary
