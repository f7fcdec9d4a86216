#include "platform/linux/LinuxKernel.h"

#include <sys/file.h>
#include <unistd.h>

#include <cstdio>
#include <string>

namespace lumenary {

int LinuxKernel::openat(int folder, const char* name, int flags, mode_t mode) {
  return ::openat(folder, name, flags | O_CLOEXEC, mode);
}

int LinuxKernel::statx(int folder, const char* name, int flags, unsigned mask, struct ::statx* result) {
  return ::statx(folder, name, flags, mask, result);
}

int LinuxKernel::faccessat(int folder, const char* name, int mode, int flags) {
  return ::faccessat(folder, name, mode, flags);
}

int LinuxKernel::mkdirat(int folder, const char* name, mode_t mode) { return ::mkdirat(folder, name, mode); }

int LinuxKernel::chmodOpened(int opened, mode_t mode) {
  // fchmod refuses such a descriptor; this name of it leads to the very thing that was opened.
  return ::fchmodat(AT_FDCWD, ("/proc/self/fd/" + std::to_string(opened)).c_str(), mode, 0);
}

int LinuxKernel::renameat2(int fromFolder, const char* fromName, int toFolder, const char* toName, unsigned flags) {
  return ::renameat2(fromFolder, fromName, toFolder, toName, flags);
}

int LinuxKernel::linkat(int fromFolder, const char* fromName, int toFolder, const char* toName, int flags) {
  return ::linkat(fromFolder, fromName, toFolder, toName, flags);
}

int LinuxKernel::unlinkat(int folder, const char* name, int flags) { return ::unlinkat(folder, name, flags); }

ssize_t LinuxKernel::read(int file, void* bytes, std::size_t count) { return ::read(file, bytes, count); }

ssize_t LinuxKernel::write(int file, const void* bytes, std::size_t count) { return ::write(file, bytes, count); }

int LinuxKernel::ftruncate(int file, off_t length) { return ::ftruncate(file, length); }

int LinuxKernel::fsync(int file) { return ::fsync(file); }

int LinuxKernel::flock(int file, int operation) { return ::flock(file, operation); }

}  // namespace lumenary
