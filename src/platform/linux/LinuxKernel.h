#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>

namespace lumenary {

/// The system calls by which files are made, changed and moved, one virtual function a call: a test can make any of
/// them fail, or the process die there. Each is the call of the same name in the manual, with its errno.
class LinuxKernel {
 public:
  virtual ~LinuxKernel() = default;

  virtual int openat(int folder, const char* name, int flags, mode_t mode);
  virtual int statx(int folder, const char* name, int flags, unsigned mask, struct ::statx* result);
  virtual int faccessat(int folder, const char* name, int mode, int flags);
  virtual int mkdirat(int folder, const char* name, mode_t mode);
  /// Changes the mode of what an O_PATH descriptor was opened on.
  virtual int chmodOpened(int opened, mode_t mode);
  virtual int renameat2(int fromFolder, const char* fromName, int toFolder, const char* toName, unsigned flags);
  virtual int linkat(int fromFolder, const char* fromName, int toFolder, const char* toName, int flags);
  virtual int unlinkat(int folder, const char* name, int flags);
  virtual ssize_t read(int file, void* bytes, std::size_t count);
  virtual ssize_t write(int file, const void* bytes, std::size_t count);
  virtual int ftruncate(int file, off_t length);
  virtual int fsync(int file);
  virtual int flock(int file, int operation);
};

}  // namespace lumenary
