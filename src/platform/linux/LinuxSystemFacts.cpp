#include "platform/linux/LinuxSystemFacts.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/utsname.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <limits>
#include <set>
#include <string>
#include <system_error>
#include <utility>

#include "base/CheckedSum.h"
#include "platform/Descriptor.h"
#include "platform/linux/ProcText.h"
#include "platform/linux/ProcessFiles.h"

namespace lumenary {
namespace {

namespace fs = std::filesystem;

constexpr std::int64_t kibibyte = 1024;
constexpr std::int64_t blockBytes = 512;

std::string readText(const std::string& path) {
  std::string text(std::size_t{64} * 1024, '\0');
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  text.resize(file ? readFromStart(file.number(), text).size() : 0);
  return text;
}

/// "\040" is a byte in octal digits.
std::string unescaped(std::string_view text) {
  std::string path;
  while (!text.empty()) {
    unsigned byte = 0;
    if (text.starts_with('\\') && text.size() >= 4 &&
        std::from_chars(text.data() + 1, text.data() + 4, byte, 8).ptr == text.data() + 4) {
      path += static_cast<char>(byte);
      text.remove_prefix(4);
    } else {
      path += text.front();
      text.remove_prefix(1);
    }
  }
  return path;
}

/// On a file system that is in memory, a file takes up no disk.
bool isOnDisk(int file) {
  struct statfs system{};
  constexpr std::array<std::uint32_t, 3> inMemory = {0x01021994 /* tmpfs */, 0x858458F6 /* ramfs */,
                                                     0x958458F6 /* hugetlbfs */};
  return ::fstatfs(file, &system) == 0 &&
         std::ranges::find(inMemory, static_cast<std::uint32_t>(system.f_type)) == inMemory.end();
}

/// Adds what one process holds open. False where its open files may not be seen.
class DeletedFiles {
 public:
  bool look(const fs::path& process) {
    std::error_code error;
    for (fs::directory_iterator at(process / "fd", error), end; !error && at != end; at.increment(error)) {
      std::error_code unreadable;
      const std::string target = fs::read_symlink(at->path(), unreadable).string();
      if (!unreadable && target.starts_with('/') && target.ends_with(" (deleted)")) {
        add(at->path(), process);
      }
    }
    return !error || error == std::errc::no_such_file_or_directory || error == std::errc::no_such_process;
  }

  DeletedOpenFiles found;

 private:
  void add(const fs::path& link, const fs::path& process) {
    // Through the link the file itself is reached; opened for its place alone, nothing waits and nothing is read.
    const Descriptor file(::open(link.c_str(), O_PATH | O_CLOEXEC));
    struct ::stat status{};
    if (!file || ::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_nlink != 0 ||
        !isOnDisk(file.number())) {
      return;
    }
    if (seen_.emplace(status.st_dev, status.st_ino).second) {
      found.bytes = saturatedSum(found.bytes, std::int64_t{status.st_blocks} * blockBytes);
    }
    const std::string text = readText((process / "stat").string());
    if (const auto stat = parseProcessStat(text)) {
      const std::string name(stat->name);
      if (std::ranges::find(found.programs, name) == found.programs.end()) {
        found.programs.push_back(name);
      }
    }
  }

  std::set<std::pair<dev_t, ino_t>> seen_;
};

}  // namespace

std::vector<SwapFile> parseSwaps(std::string_view swaps) {
  std::vector<SwapFile> files;
  takeLine(swaps);
  while (!swaps.empty()) {
    std::string_view line = takeLine(swaps);
    const std::string_view path = takeWord(line);
    const std::string_view type = takeWord(line);
    const auto kibibytes = takeNumber<std::int64_t>(line);
    if (type == "file" && kibibytes > 0 && kibibytes <= std::numeric_limits<std::int64_t>::max() / kibibyte) {
      files.push_back({.path = unescaped(path), .bytes = kibibytes * kibibyte});
    }
  }
  return files;
}

std::string LinuxSystemFacts::kernelRelease() const {
  utsname system{};
  return ::uname(&system) == 0 ? system.release : "";
}

std::vector<SwapFile> LinuxSystemFacts::swapFiles() const { return parseSwaps(readText("/proc/swaps")); }

DeletedOpenFiles LinuxSystemFacts::deletedOpenFiles() const {
  DeletedFiles files;
  std::error_code error;
  for (fs::directory_iterator at("/proc", error), end; !error && at != end; at.increment(error)) {
    if (numberAtFront<std::int32_t>(at->path().filename().native()) > 0 && !files.look(at->path())) {
      ++files.found.unseenProcesses;
    }
  }
  std::ranges::sort(files.found.programs);
  return files.found;
}

std::vector<std::string> LinuxSystemFacts::openPaths() const {
  std::set<std::string> paths;
  const auto add = [&](const fs::path& link) {
    std::error_code unreadable;
    std::string target = fs::read_symlink(link, unreadable).string();
    if (!unreadable && target.starts_with('/')) {
      paths.insert(std::move(target));
    }
  };
  std::error_code error;
  for (fs::directory_iterator at("/proc", error), end; !error && at != end; at.increment(error)) {
    if (numberAtFront<std::int32_t>(at->path().filename().native()) <= 0) {
      continue;
    }
    add(at->path() / "cwd");
    std::error_code closed;
    for (fs::directory_iterator file(at->path() / "fd", closed), last; !closed && file != last;
         file.increment(closed)) {
      add(file->path());
    }
  }
  return {paths.begin(), paths.end()};
}

std::optional<std::int64_t> LinuxSystemFacts::reservedBytes(const std::string& path) const {
  struct statvfs volume{};
  std::int64_t bytes = 0;
  if (::statvfs(path.c_str(), &volume) != 0 || volume.f_bfree < volume.f_bavail ||
      __builtin_mul_overflow(volume.f_bfree - volume.f_bavail, volume.f_frsize, &bytes)) {
    return std::nullopt;
  }
  return bytes;
}

}  // namespace lumenary
