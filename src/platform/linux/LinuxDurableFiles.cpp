#include "platform/linux/LinuxDurableFiles.h"

#include <dirent.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

#include "base/Path.h"
#include "platform/linux/KernelFiles.h"

namespace lumenary {
namespace {

constexpr auto lockPatience = std::chrono::seconds(5);
constexpr auto lockPause = std::chrono::milliseconds(10);
constexpr auto longestLife = std::chrono::hours(24);

/// Too old to be at work. A date in the future, from a clock that was wrong, doesn't tell.
bool isOld(const KernelStatus& status) {
  const auto modified = std::chrono::sys_seconds(std::chrono::seconds(status.modifiedSeconds));
  return std::chrono::system_clock::now() - modified > longestLife;
}

SystemResult<Descriptor> openParent(LinuxKernel& kernel, const std::string& path) {
  return openPath(kernel, std::string(parentPath(path)), O_RDONLY | O_DIRECTORY);
}

class LinuxGrowingFile final : public GrowingFile {
 public:
  LinuxGrowingFile(LinuxKernel& kernel, Descriptor file) : kernel_(kernel), file_(std::move(file)) {}

  SystemResult<void> append(std::string_view bytes) override {
    if (isBroken_) {
      return std::unexpected(SystemError{EIO});
    }
    auto result = writeAndSync(kernel_, file_, bytes);
    if (result) {
      length_ += static_cast<off_t>(bytes.size());
    } else {
      // A part of a line must not run into the next one.
      isBroken_ = kernel_.ftruncate(file_.number(), length_) != 0;
    }
    return result;
  }

 private:
  LinuxKernel& kernel_;
  Descriptor file_;
  off_t length_ = 0;
  bool isBroken_ = false;  ///< a part of a line could not be taken away
};

}  // namespace

SystemResult<std::string> LinuxDurableFiles::read(const std::string& path, std::size_t limit) {
  // O_NONBLOCK: a pipe that somebody put there must not hold the program up.
  const auto file = openPath(kernel_, path, O_RDONLY | O_NONBLOCK);
  if (!file) {
    return std::unexpected(file.error());
  }
  return readAll(kernel_, *file, limit);
}

SystemResult<void> LinuxDurableFiles::writeAtomically(const std::string& path, std::string_view bytes) {
  const auto folder = openParent(kernel_, path);
  if (!folder) {
    return std::unexpected(folder.error());
  }
  return replaceFile(kernel_, *folder, std::string(lastPathComponent(path)), bytes);
}

SystemResult<void> LinuxDurableFiles::makeFolders(const std::string& path) {
  return lumenary::makeFolders(kernel_, path);
}

SystemResult<std::vector<std::string>> LinuxDurableFiles::names(const std::string& folder) {
  const std::unique_ptr<DIR, int (*)(DIR*)> opened(::opendir(folder.c_str()), ::closedir);
  if (!opened) {
    return std::unexpected(lastError());
  }
  std::vector<std::string> result;
  errno = 0;
  while (const dirent* entry = ::readdir(opened.get())) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") {
      result.emplace_back(name);
    }
  }
  if (errno != 0) {
    return std::unexpected(lastError());
  }
  return result;
}

SystemResult<void> LinuxDurableFiles::remove(const std::string& path) {
  if (kernel_.unlinkat(AT_FDCWD, path.c_str(), 0) != 0) {
    return std::unexpected(lastError());
  }
  return {};
}

void LinuxDurableFiles::removeRemains(const std::string& folder) {
  const auto names = this->names(folder);
  if (!names) {
    return;
  }
  for (const std::string& name : *names) {
    const std::string path = appendingPathComponent(folder, name);
    if (!isTemporaryName(name)) {
      continue;
    }
    const auto file = openPath(kernel_, path, O_RDWR | O_NOFOLLOW | O_NONBLOCK);
    const auto status = file ? statusOf(kernel_, *file) : std::unexpected(file.error());
    if (status && status->identity.kind == FileKind::file && isOld(*status) && !isLocked(*file)) {
      static_cast<void>(remove(path));
    }
  }
}

/// Locks it where nobody else does.
bool LinuxDurableFiles::isLocked(const Descriptor& file) {
  return kernel_.flock(file.number(), LOCK_EX | LOCK_NB) != 0 && !lastError().isWithoutLocks();
}

SystemResult<Descriptor> LinuxDurableFiles::lock(const std::string& path) { return lock(path, lockPatience); }

SystemResult<Descriptor> LinuxDurableFiles::lockNow(const std::string& path) {
  return lock(path, std::chrono::milliseconds(0));
}

SystemResult<Descriptor> LinuxDurableFiles::lock(const std::string& path, std::chrono::milliseconds patience) {
  auto file = openPath(kernel_, path, O_RDWR | O_CREAT | O_NOFOLLOW, 0600);
  if (!file) {
    return file;
  }
  const auto giveUp = std::chrono::steady_clock::now() + patience;
  while (kernel_.flock(file->number(), LOCK_EX | LOCK_NB) != 0) {
    const SystemError cause = lastError();
    const bool isHeld = cause.code == EWOULDBLOCK || cause.code == EINTR;
    if (!isHeld || std::chrono::steady_clock::now() >= giveUp) {
      return std::unexpected(cause);
    }
    std::this_thread::sleep_for(lockPause);
  }
  return file;
}

SystemResult<std::unique_ptr<GrowingFile>> LinuxDurableFiles::grow(const std::string& path) {
  auto file = openPath(kernel_, path, O_WRONLY | O_CREAT | O_EXCL | O_APPEND | O_NOFOLLOW, 0600);
  if (!file) {
    return std::unexpected(file.error());
  }
  // A file system without locks leaves the file unlocked; then only its age tells that it is in use.
  if (isLocked(*file)) {
    return std::unexpected(lastError());
  }
  const auto folder = openParent(kernel_, path);
  if (!folder) {
    return std::unexpected(folder.error());
  }
  if (auto synced = sync(kernel_, *folder); !synced) {
    return std::unexpected(synced.error());
  }
  return std::make_unique<LinuxGrowingFile>(kernel_, *std::move(file));
}

bool LinuxDurableFiles::isGrowing(const std::string& path) {
  // Writable, as some network file systems lock nothing else. What can't be asked is left alone.
  const auto file = openPath(kernel_, path, O_RDWR | O_NOFOLLOW | O_NONBLOCK);
  if (!file) {
    return !file.error().isMissing();
  }
  if (kernel_.flock(file->number(), LOCK_EX | LOCK_NB) == 0) {
    return false;
  }
  const bool isWithoutLocks = lastError().isWithoutLocks();
  const auto status = statusOf(kernel_, *file);
  return !isWithoutLocks || !status || !isOld(*status);
}

}  // namespace lumenary
