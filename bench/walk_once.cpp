// walk_once LIST [TIMES]: the fastest way, on one thread, to ask the kernel how much space folders take. It makes the
// system calls that any such walk must make (open and read each folder, look at each file) and keeps nothing but a
// sum: no hard links, no other volumes, no limit to the descriptors. What a real walk takes beyond this is its own.
//
// LIST is a file with the paths of the folders, a NUL after each. Prints the allocated bytes of the last walk.

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::size_t bufferBytes = std::size_t{64} * 1024;

class Walk {
 public:
  std::uint64_t bytesAt(int parent, const char* name, std::size_t depth = 0) {
    const int folder = ::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
    if (folder < 0) {
      std::perror(name);
      std::exit(1);
    }
    if (depth == buffers_.size()) {
      buffers_.push_back(std::make_unique_for_overwrite<std::byte[]>(bufferBytes));
    }
    std::byte* const buffer = buffers_[depth].get();
    std::uint64_t bytes = 0;
    for (ssize_t length = 0; (length = ::getdents64(folder, buffer, bufferBytes)) > 0;) {
      for (const std::byte* at = buffer; at < buffer + length;) {
        const auto& entry = *reinterpret_cast<const dirent64*>(at);
        at += entry.d_reclen;
        if (entry.d_type != DT_DIR) {
          bytes += bytesOfFile(folder, entry.d_name);
        } else if (const std::string_view child = entry.d_name; child != "." && child != "..") {
          bytes += bytesAt(folder, entry.d_name, depth + 1);
        }
      }
    }
    ::close(folder);
    return bytes;
  }

 private:
  static std::uint64_t bytesOfFile(int folder, const char* name) {
    struct statx found{};
    ::statx(folder, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC, STATX_BLOCKS, &found);
    return found.stx_blocks * 512;
  }

  std::vector<std::unique_ptr<std::byte[]>> buffers_;  ///< one for each level
};

}  // namespace

int main(int argumentCount, char** arguments) {
  std::ifstream file(argumentCount > 1 ? arguments[1] : "");
  if (!file) {
    std::fputs("Usage: walk_once LIST [TIMES]\n", stderr);
    return 2;
  }
  const std::string list(std::istreambuf_iterator<char>(file), {});
  const int times = argumentCount > 2 ? std::atoi(arguments[2]) : 1;

  Walk walk;
  std::uint64_t bytes = 0;
  for (int turn = 0; turn < times; ++turn) {
    bytes = 0;
    for (std::size_t start = 0; start < list.size(); start = list.find('\0', start) + 1) {
      bytes += walk.bytesAt(AT_FDCWD, list.c_str() + start);
    }
  }
  std::printf("%llu\n", static_cast<unsigned long long>(bytes));
}
