#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

[[noreturn]] inline void fail(const std::string& what) {
  std::perror(what.c_str());
  std::exit(1);
}

/// A folder in the making, held open; when it is done, it gets its date. No date: it keeps the present one.
class Folder {
 public:
  Folder(const Folder& parent, const std::string& name) : Folder(parent.number_, name, parent.date_) {}
  Folder(int parent, const std::string& name, std::time_t date) : date_(date) {
    if (::mkdirat(parent, name.c_str(), 0755) != 0 && errno != EEXIST) {
      fail(name);
    }
    number_ = ::openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY);
    if (number_ < 0) {
      fail(name);
    }
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    giveDate(number_);
    ::close(number_);
  }

  int number() const { return number_; }

  void file(const std::string& name, std::size_t size) const {
    static const std::string content(65536, 'x');
    const int number = ::openat(number_, name.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0644);
    // What is big gets its blocks without its bytes: that is fast, and measured the same.
    const bool isMade =
        number >= 0 && (size <= content.size() ? ::write(number, content.data(), size) == static_cast<ssize_t>(size)
                                               : ::posix_fallocate(number, 0, static_cast<off_t>(size)) == 0);
    if (!isMade) {
      fail(name);
    }
    giveDate(number);
    ::close(number);
  }

  /// A file that ends in one block of its own and holds nothing before.
  void sparseFile(const std::string& name, std::size_t size) const {
    static const std::string content(4096, 'x');
    const int number = ::openat(number_, name.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0644);
    const auto start = static_cast<off_t>(size - content.size());
    if (number < 0 || ::pwrite(number, content.data(), content.size(), start) != static_cast<ssize_t>(content.size())) {
      fail(name);
    }
    giveDate(number);
    ::close(number);
  }

  void symbolicLink(const std::string& name, const std::string& target) const {
    if (::symlinkat(target.c_str(), number_, name.c_str()) != 0) {
      fail(name);
    }
  }

  void hardLink(const std::string& name, const Folder& from, const std::string& source) const {
    if (::linkat(from.number_, source.c_str(), number_, name.c_str(), 0) != 0) {
      fail(name);
    }
  }

 private:
  void giveDate(int number) const {
    const std::array<timespec, 2> times = {timespec{date_, 0}, timespec{date_, 0}};
    if (date_ != 0) {
      ::futimens(number, times.data());
    }
  }

  int number_ = -1;
  std::time_t date_;
};
