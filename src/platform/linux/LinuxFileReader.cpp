#include "platform/linux/LinuxFileReader.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "platform/linux/StatxAttributes.h"

namespace lumenary {
namespace {

constexpr int toRead = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
constexpr int toPassThrough = O_PATH | O_DIRECTORY | O_CLOEXEC;

/// Where an absolute path is handed to a system call: the descriptor beside it is not looked at then.
constexpr int nowhere = -1;

std::unexpected<SystemError> failure(int code) { return std::unexpected(SystemError{code}); }

bool isAbsolute(std::string_view path) { return path.starts_with('/') && path.find('\0') == std::string_view::npos; }

std::string_view withoutTrailingSlashes(std::string_view path) {
  return path.substr(0, std::max<std::size_t>(1, path.find_last_not_of('/') + 1));
}

SystemResult<Descriptor> openAt(int parent, const char* name, int flags) {
  for (;;) {
    const int number = ::openat(parent, name, flags);
    if (number >= 0) {
      return Descriptor(number);
    }
    if (errno != EINTR) {
      return failure(errno);
    }
  }
}

SystemResult<Descriptor> openAtUnlessLink(int parent, const char* name, int flags) {
  SystemResult<Descriptor> opened = openAt(parent, name, flags | O_NOFOLLOW);
  if (opened || opened.error().code != ENOTDIR) {
    return opened;
  }
  // O_DIRECTORY makes a link look like any other thing that isn't a folder.
  struct stat found{};
  const bool isLink = ::fstatat(parent, name, &found, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(found.st_mode);
  return failure(isLink ? ELOOP : ENOTDIR);
}

SystemResult<Descriptor> openThroughNoLink(std::string_view path) {
  SystemResult<Descriptor> folder = openAt(nowhere, "/", toRead);
  std::string name;
  for (std::size_t at = path.find_first_not_of('/'); folder && at != std::string_view::npos;) {
    const std::size_t end = std::min(path.find('/', at), path.size());
    name.assign(path, at, end - at);
    at = path.find_first_not_of('/', end);
    const bool isLast = at == std::string_view::npos;
    folder = openAtUnlessLink(folder->number(), name.c_str(), isLast ? toRead : toPassThrough);
  }
  return folder;
}

/// An open folder on the way and what is left of the path from there, short enough for one system call.
struct Foothold {
  Descriptor folder;
  std::string rest;
};

SystemResult<Foothold> approach(std::string_view path) {
  Foothold foothold{Descriptor(nowhere), std::string(withoutTrailingSlashes(path))};
  while (foothold.rest.size() >= PATH_MAX) {
    const std::size_t cut = foothold.rest.rfind('/', PATH_MAX - 1);
    if (cut == std::string::npos || cut == 0) {
      return failure(ENAMETOOLONG);
    }
    const std::string piece = foothold.rest.substr(0, cut);
    SystemResult<Descriptor> next = openAt(foothold.folder.number(), piece.c_str(), toPassThrough);
    if (!next) {
      return std::unexpected(next.error());
    }
    foothold.folder = std::move(*next);
    foothold.rest.erase(0, foothold.rest.find_first_not_of('/', cut));
  }
  return foothold;
}

SystemResult<FileAttributes> attributesAt(int folder, const char* name, int flags) {
  constexpr unsigned wanted =
      STATX_TYPE | STATX_INO | STATX_NLINK | STATX_UID | STATX_SIZE | STATX_BLOCKS | STATX_MTIME;
  struct statx found{};
  if (::statx(folder, name, flags | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC, wanted, &found) != 0) {
    return failure(errno);
  }
  return FileAttributes{
      .identity = identityOf(found),
      .linkCount = found.stx_nlink,
      .owner = found.stx_uid,
      .length = static_cast<std::int64_t>(std::min<std::uint64_t>(found.stx_size, INT64_MAX)),
      .allocatedBytes = static_cast<std::int64_t>(found.stx_blocks) * 512,
      .modified = dateOf(found.stx_mtime),
      .isUnchangeable = isUnchangeable(found),
  };
}

FileKind kindOfEntry(int folder, const dirent64& entry) {
  switch (entry.d_type) {
    case DT_DIR:
      return FileKind::folder;
    case DT_REG:
      return FileKind::file;
    case DT_LNK:
      return FileKind::link;
    case DT_UNKNOWN: {
      const SystemResult<FileAttributes> found = attributesAt(folder, entry.d_name, AT_SYMLINK_NOFOLLOW);
      // What can't be looked at may be a folder; whoever tries to open it will be told.
      return found ? found->identity.kind : FileKind::folder;
    }
    default:
      return FileKind::other;
  }
}

}  // namespace

SystemResult<Descriptor> LinuxFileReader::openFolder(std::string_view path, LinkPolicy links) const {
  if (!isAbsolute(path)) {
    return failure(EINVAL);
  }
  if (links == LinkPolicy::refuse) {
    return openThroughNoLink(path);
  }
  const SystemResult<Foothold> foothold = approach(path);
  if (!foothold) {
    return std::unexpected(foothold.error());
  }
  return openAt(foothold->folder.number(), foothold->rest.c_str(), toRead);
}

SystemResult<Descriptor> LinuxFileReader::openFolder(const Descriptor& parent, const char* name) const {
  return openAtUnlessLink(parent.number(), name, toRead);
}

SystemResult<std::span<const FolderEntry>> LinuxFileReader::nextEntries(const Descriptor& folder,
                                                                        FolderScratch& scratch) const {
  scratch.entries.clear();
  while (scratch.entries.empty()) {
    const ssize_t length = ::getdents64(folder.number(), scratch.buffer.get(), FolderScratch::bufferBytes);
    if (length < 0 && errno == EINTR) {
      continue;
    }
    if (length < 0) {
      return failure(errno);
    }
    if (length == 0) {
      break;
    }
    for (const std::byte* at = scratch.buffer.get(); at < scratch.buffer.get() + length;) {
      const auto& entry = *reinterpret_cast<const dirent64*>(at);
      at += entry.d_reclen;
      const std::string_view name = entry.d_name;
      if (name == "." || name == "..") {
        continue;
      }
      scratch.entries.push_back({entry.d_name, name.size(), kindOfEntry(folder.number(), entry)});
    }
  }
  return std::span<const FolderEntry>(scratch.entries);
}

SystemResult<FileAttributes> LinuxFileReader::attributes(std::string_view path, LinkPolicy links) const {
  if (!isAbsolute(path)) {
    return failure(EINVAL);
  }
  const SystemResult<Foothold> foothold = approach(path);
  if (!foothold) {
    return std::unexpected(foothold.error());
  }
  const int flags = links == LinkPolicy::follow ? 0 : AT_SYMLINK_NOFOLLOW;
  return attributesAt(foothold->folder.number(), foothold->rest.c_str(), flags);
}

SystemResult<FileAttributes> LinuxFileReader::attributes(const Descriptor& folder, const char* name) const {
  return attributesAt(folder.number(), name, AT_SYMLINK_NOFOLLOW);
}

SystemResult<FileAttributes> LinuxFileReader::attributes(const Descriptor& folder) const {
  return attributesAt(folder.number(), "", AT_EMPTY_PATH);
}

SystemResult<std::string> LinuxFileReader::realPath(std::string_view path) const {
  if (path.find('\0') != std::string_view::npos) {
    return failure(EINVAL);
  }
  const std::unique_ptr<char, decltype([](char* text) { std::free(text); })> resolved(
      ::realpath(std::string(path).c_str(), nullptr));
  if (!resolved) {
    return failure(errno);
  }
  return std::string(resolved.get());
}

}  // namespace lumenary
