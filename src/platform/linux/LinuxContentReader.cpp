#include "platform/linux/LinuxContentReader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "base/Path.h"
#include "platform/linux/StatxAttributes.h"

namespace lumenary {
namespace {

std::unexpected<SystemError> lastFailure() { return std::unexpected(SystemError{errno}); }

/// The date of the last access stays where the file is the person's own; other files refuse to be opened so.
int openQuietly(int folder, const char* name) {
  constexpr int flags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  for (int access = O_NOATIME;;) {
    const int number = ::openat(folder, name, flags | access);
    if (number < 0 && errno == EPERM && access != 0) {
      access = 0;
    } else if (number >= 0 || errno != EINTR) {
      return number;
    }
  }
}

SystemResult<struct statx> statusOf(const Descriptor& file) {
  struct statx found{};
  constexpr unsigned wanted = STATX_TYPE | STATX_INO | STATX_SIZE | STATX_BLOCKS | STATX_MTIME | STATX_CTIME;
  if (::statx(file.number(), "", AT_EMPTY_PATH, wanted, &found) != 0) {
    return lastFailure();
  }
  return found;
}

}  // namespace

SystemResult<Descriptor> LinuxContentReader::openFile(const std::string& path) const {
  const auto folder = folders_.openFolder(parentPath(path), LinkPolicy::refuse);
  return folder ? openFile(*folder, std::string(lastPathComponent(path)).c_str()) : std::unexpected(folder.error());
}

SystemResult<Descriptor> LinuxContentReader::openFile(const Descriptor& folder, const char* name) const {
  const int number = openQuietly(folder.number(), name);
  if (number < 0) {
    return lastFailure();
  }
  Descriptor file(number);
  const auto found = statusOf(file);
  if (!found) {
    return std::unexpected(found.error());
  }
  if (!S_ISREG(found->stx_mode)) {
    return std::unexpected(SystemError{EINVAL});
  }
  return file;
}

SystemResult<ContentStamp> LinuxContentReader::stamp(const Descriptor& file) const {
  const auto found = statusOf(file);
  if (!found) {
    return std::unexpected(found.error());
  }
  return ContentStamp{.identity = identityOf(*found),
                      .byteCount = static_cast<std::int64_t>(found->stx_size),
                      .allocatedBytes = static_cast<std::int64_t>(found->stx_blocks) * 512,
                      .modified = dateOf(found->stx_mtime),
                      .changed = dateOf(found->stx_ctime)};
}

SystemResult<std::size_t> LinuxContentReader::read(const Descriptor& file, std::uint64_t offset,
                                                   std::span<std::byte> into) const {
  std::size_t count = 0;
  while (count < into.size()) {
    const ssize_t length =
        ::pread(file.number(), into.data() + count, into.size() - count, static_cast<off_t>(offset + count));
    if (length < 0 && errno == EINTR) {
      continue;
    }
    if (length < 0) {
      return lastFailure();
    }
    if (length == 0) {
      break;
    }
    count += static_cast<std::size_t>(length);
  }
  return count;
}

bool LinuxContentReader::isInMemory(const Descriptor& file, std::uint64_t offset) const {
  std::byte byte{};
  const iovec piece{.iov_base = &byte, .iov_len = 1};
  // Only this error says that the disk would have to be asked; some file systems can't tell.
  return ::preadv2(file.number(), &piece, 1, static_cast<off_t>(offset), RWF_NOWAIT) >= 0 || errno != EAGAIN;
}

void LinuxContentReader::willRead(const Descriptor& file, std::uint64_t offset, std::uint64_t length) const {
  ::posix_fadvise(file.number(), static_cast<off_t>(offset), static_cast<off_t>(length), POSIX_FADV_WILLNEED);
}

void LinuxContentReader::release(const Descriptor& file, std::uint64_t offset, std::uint64_t length) const {
  ::posix_fadvise(file.number(), static_cast<off_t>(offset), static_cast<off_t>(length), POSIX_FADV_DONTNEED);
}

}  // namespace lumenary
