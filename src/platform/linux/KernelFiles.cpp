#include "platform/linux/KernelFiles.h"

#include <cerrno>
#include <random>

#include "base/Path.h"
#include "platform/linux/StatxAttributes.h"

namespace lumenary {
namespace {

constexpr std::string_view temporaryMark = ".new-";
constexpr unsigned statusMask =
    STATX_TYPE | STATX_MODE | STATX_NLINK | STATX_UID | STATX_INO | STATX_MTIME | STATX_MNT_ID;

SystemResult<KernelStatus> status(LinuxKernel& kernel, int folder, const char* name, int flags) {
  struct statx raw{};
  if (kernel.statx(folder, name, flags | AT_NO_AUTOMOUNT, statusMask, &raw) != 0) {
    return std::unexpected(lastError());
  }
  KernelStatus result;
  result.identity = identityOf(raw);
  result.mountID = (raw.stx_mask & STATX_MNT_ID) != 0 ? raw.stx_mnt_id : 0;
  result.owner = raw.stx_uid;
  result.mode = raw.stx_mode;
  result.linkCount = raw.stx_nlink;
  result.modifiedSeconds = raw.stx_mtime.tv_sec;
  result.isUnchangeable = isUnchangeable(raw);
  return result;
}

SystemResult<Descriptor> open(LinuxKernel& kernel, int folder, const char* name, int flags, mode_t mode) {
  for (;;) {
    const int number = kernel.openat(folder, name, flags, mode);
    if (number >= 0) {
      return Descriptor(number);
    }
    if (errno != EINTR) {
      return std::unexpected(lastError());
    }
  }
}

}  // namespace

SystemError lastError() { return {.code = errno}; }

SystemResult<Descriptor> openAt(LinuxKernel& kernel, const Descriptor& folder, const char* name, int flags,
                                mode_t mode) {
  return open(kernel, folder.number(), name, flags, mode);
}

SystemResult<Descriptor> openPath(LinuxKernel& kernel, const std::string& path, int flags, mode_t mode) {
  return open(kernel, AT_FDCWD, path.c_str(), flags, mode);
}

SystemResult<KernelStatus> statusAt(LinuxKernel& kernel, const Descriptor& folder, const char* name) {
  return status(kernel, folder.number(), name, AT_SYMLINK_NOFOLLOW);
}

SystemResult<KernelStatus> statusOf(LinuxKernel& kernel, const Descriptor& opened) {
  return status(kernel, opened.number(), "", AT_EMPTY_PATH);
}

SystemResult<std::string> readAll(LinuxKernel& kernel, const Descriptor& file, std::size_t limit) {
  constexpr std::size_t step = 64 * 1024;
  std::string bytes;
  for (;;) {
    const std::size_t have = bytes.size();
    bytes.resize(have + step);
    const ssize_t count = kernel.read(file.number(), bytes.data() + have, step);
    bytes.resize(have + (count > 0 ? static_cast<std::size_t>(count) : 0));
    if (count < 0 && errno != EINTR) {
      return std::unexpected(lastError());
    }
    if (bytes.size() > limit) {
      return std::unexpected(SystemError{EFBIG});
    }
    if (count == 0) {
      return bytes;
    }
  }
}

SystemResult<void> writeAll(LinuxKernel& kernel, const Descriptor& file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = kernel.write(file.number(), bytes.data(), bytes.size());
    if (count < 0 && errno != EINTR) {
      return std::unexpected(lastError());
    }
    if (count > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(count));
    }
  }
  return {};
}

SystemResult<void> writeAndSync(LinuxKernel& kernel, const Descriptor& file, std::string_view bytes) {
  auto written = writeAll(kernel, file, bytes);
  return written ? sync(kernel, file) : written;
}

SystemResult<void> sync(LinuxKernel& kernel, const Descriptor& opened) {
  // EINVAL: a file system that has nothing to sync on a folder says so this way.
  if (kernel.fsync(opened.number()) != 0 && errno != EINVAL) {
    return std::unexpected(lastError());
  }
  return {};
}

SystemResult<void> removeFile(LinuxKernel& kernel, const Descriptor& folder, const char* name) {
  if (kernel.unlinkat(folder.number(), name, 0) != 0) {
    return std::unexpected(lastError());
  }
  return {};
}

SystemResult<void> makeFolder(LinuxKernel& kernel, const Descriptor& parent, const char* name) {
  if (kernel.mkdirat(parent.number(), name, 0700) == 0) {
    return sync(kernel, parent);
  }
  return errno == EEXIST ? SystemResult<void>() : std::unexpected(lastError());
}

SystemResult<void> makeFolders(LinuxKernel& kernel, const std::string& path) {
  const std::string above(parentPath(path));
  auto parent = openPath(kernel, above, O_RDONLY | O_DIRECTORY);
  if (!parent && parent.error().code == ENOENT) {
    if (auto made = makeFolders(kernel, above); !made) {
      return made;
    }
    parent = openPath(kernel, above, O_RDONLY | O_DIRECTORY);
  }
  return parent ? makeFolder(kernel, *parent, std::string(lastPathComponent(path)).c_str())
                : std::unexpected(parent.error());
}

bool isTemporaryName(std::string_view name) {
  const auto mark = name.rfind(temporaryMark);
  const std::string_view number = mark == std::string_view::npos ? "" : name.substr(mark + temporaryMark.size());
  return !number.empty() && number.find_first_not_of("0123456789") == std::string_view::npos;
}

SystemResult<void> replaceFile(LinuxKernel& kernel, const Descriptor& folder, const std::string& name,
                               std::string_view bytes) {
  const std::string temporary = std::string(name).append(temporaryMark) + std::to_string(std::random_device{}());
  auto file = openAt(kernel, folder, temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600);
  if (!file) {
    return std::unexpected(file.error());
  }
  auto result = writeAndSync(kernel, *file, bytes);
  if (result && kernel.renameat2(folder.number(), temporary.c_str(), folder.number(), name.c_str(), 0) != 0) {
    result = std::unexpected(lastError());
  }
  if (!result) {
    kernel.unlinkat(folder.number(), temporary.c_str(), 0);
    return result;
  }
  return sync(kernel, folder);
}

}  // namespace lumenary
