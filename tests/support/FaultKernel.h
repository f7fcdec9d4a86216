#pragma once

#include <cerrno>
#include <csignal>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/LinuxKernel.h"

namespace lumenary {

/// What shall happen at one system call, counted from 0.
struct Fault {
  enum class Kind { none, fail, killBefore, killAfter } kind = Kind::none;
  std::size_t call = 0;
  int error = 0;
};

/// The real kernel with one fault in it; remembers the names of the calls.
class FaultKernel final : public LinuxKernel {
 public:
  FaultKernel() = default;
  explicit FaultKernel(Fault fault) : fault_(fault) {}

  const std::vector<std::string_view>& calls() const { return calls_; }

  /// Called before each call with its name: the moment in which somebody else changes the disk.
  std::function<void(std::string_view)> beforeCall;

  int openat(int folder, const char* name, int flags, mode_t mode) override {
    return step("openat", [&] { return LinuxKernel::openat(folder, name, flags, mode); });
  }
  int statx(int folder, const char* name, int flags, unsigned mask, struct ::statx* result) override {
    return step("statx", [&] { return LinuxKernel::statx(folder, name, flags, mask, result); });
  }
  int faccessat(int folder, const char* name, int mode, int flags) override {
    return step("faccessat", [&] { return LinuxKernel::faccessat(folder, name, mode, flags); });
  }
  int mkdirat(int folder, const char* name, mode_t mode) override {
    return step("mkdirat", [&] { return LinuxKernel::mkdirat(folder, name, mode); });
  }
  int chmodOpened(int opened, mode_t mode) override {
    return step("chmodOpened", [&] { return LinuxKernel::chmodOpened(opened, mode); });
  }
  int renameat2(int from, const char* fromName, int to, const char* toName, unsigned flags) override {
    return step("renameat2", [&] { return LinuxKernel::renameat2(from, fromName, to, toName, flags); });
  }
  int linkat(int from, const char* fromName, int to, const char* toName, int flags) override {
    return step("linkat", [&] { return LinuxKernel::linkat(from, fromName, to, toName, flags); });
  }
  int unlinkat(int folder, const char* name, int flags) override {
    return step("unlinkat", [&] { return LinuxKernel::unlinkat(folder, name, flags); });
  }
  ssize_t read(int file, void* bytes, std::size_t count) override {
    return step("read", [&] { return LinuxKernel::read(file, bytes, count); });
  }
  ssize_t write(int file, const void* bytes, std::size_t count) override {
    return step("write", [&] { return LinuxKernel::write(file, bytes, count); });
  }
  int ftruncate(int file, off_t length) override {
    return step("ftruncate", [&] { return LinuxKernel::ftruncate(file, length); });
  }
  int fsync(int file) override {
    return step("fsync", [&] { return LinuxKernel::fsync(file); });
  }
  int flock(int file, int operation) override {
    return step("flock", [&] { return LinuxKernel::flock(file, operation); });
  }

 private:
  template <class Call>
  auto step(std::string_view name, Call call) -> decltype(call()) {
    const bool isHere = fault_.kind != Fault::Kind::none && calls_.size() == fault_.call;
    calls_.push_back(name);
    if (beforeCall) {
      beforeCall(name);
    }
    if (isHere && fault_.kind == Fault::Kind::killBefore) {
      std::raise(SIGKILL);
    }
    if (isHere && fault_.kind == Fault::Kind::fail) {
      errno = fault_.error;
      return -1;
    }
    const auto result = call();
    if (isHere && fault_.kind == Fault::Kind::killAfter) {
      std::raise(SIGKILL);
    }
    return result;
  }

  Fault fault_;
  std::vector<std::string_view> calls_;
};

/// The errors that a call of that name can meet on a disk that is full, failing, read-only or closed.
inline std::vector<int> errorsOf(std::string_view call) {
  if (call == "renameat2") {
    return {EIO, EACCES, EPERM, EROFS, ENOSPC, EDQUOT, EXDEV, EBUSY, EINVAL, EEXIST, ENOENT};
  }
  if (call == "openat") {
    return {EIO, EACCES, EROFS, ENOSPC, EDQUOT, EMFILE, EEXIST, ENAMETOOLONG};
  }
  if (call == "mkdirat" || call == "linkat") {
    return {EIO, EACCES, EROFS, ENOSPC, EDQUOT, EEXIST};
  }
  if (call == "write" || call == "fsync") {
    return {EIO, ENOSPC, EDQUOT, EROFS};
  }
  if (call == "unlinkat" || call == "faccessat") {
    return {EIO, EACCES, EROFS};
  }
  if (call == "statx") {
    return {EIO, EACCES, ENOENT};
  }
  if (call == "flock") {
    return {ENOLCK, EIO};
  }
  return {EIO};
}

}  // namespace lumenary
