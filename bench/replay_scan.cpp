// replay_scan list ROOT LIST       writes down the system calls of a scan
// replay_scan run ROOT LIST [THREADS]
//
// The limit of a scan: its system calls made again from a list, by two threads unless told, without anything that a
// scan must do besides. Each folder is opened by its name, looked at once, read 64 KiB at a time and closed; each
// regular file is looked at by its name; about links nothing is asked. No sizes are summed, no links are told apart.
//
// The list holds records of NUL-terminated texts that end in an empty one: first the folder, then its regular files. A
// byte before the folder's path tells how it is reached, see `Reach`. Behind the records stand the offsets of the
// pieces that a thread takes at once, as 64-bit numbers, and then how many there are.

#include <dirent.h>
#include <fcntl.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace {

constexpr int toRead = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
constexpr std::size_t bufferBytes = std::size_t{64} * 1024;
constexpr std::size_t foldersInPiece = 32;
constexpr std::size_t filesInRecord = 2'000;  ///< about what one read of a folder brings

enum Reach : char {
  fromRoot = 'r',       ///< by its path below the root
  fromPreceding = 'p',  ///< by its name, in the folder of the record before; no piece begins with such a one
  moreFiles = 'm',      ///< the same folder once more: opened by its path, not read, for more of its files
};

[[noreturn]] void fail(const std::string& what) {
  std::perror(what.c_str());
  std::exit(1);
}

template <class Visit>
void forEachEntry(int folder, std::byte* buffer, Visit visit) {
  for (ssize_t length = 0; (length = ::getdents64(folder, buffer, bufferBytes)) > 0;) {
    for (const std::byte* at = buffer; at < buffer + length;) {
      const auto& entry = *reinterpret_cast<const dirent64*>(at);
      at += entry.d_reclen;
      if (const std::string_view name = entry.d_name; name != "." && name != "..") {
        visit(name, entry.d_type);
      }
    }
  }
}

/// Goes depth first. One folder is open at a time, and the way back up is "..", so any depth will do.
class ListMaker {
 public:
  explicit ListMaker(const std::string& root) : at_(::open(root.c_str(), toRead & ~O_NOFOLLOW)) {
    if (at_ < 0) {
      fail(root);
    }
    visit(".");
    while (!pending_.empty()) {
      if (pending_.back().empty()) {
        pending_.pop_back();
        path_.resize(path_.empty() ? 0 : path_.rfind('/'));
        enter("..");
      } else {
        const std::string name = std::move(pending_.back().back());
        pending_.back().pop_back();
        path_ += '/' + name;
        enter(name.c_str());
        visit(name);
      }
    }
  }

  std::string take() && {
    for (const std::uint64_t piece : pieces_) {
      appendNumber(piece);
    }
    appendNumber(pieces_.size());
    return std::move(list_);
  }

 private:
  void enter(const char* name) {
    const int next = ::openat(at_, name, toRead);
    if (next < 0) {
      fail(path_);
    }
    ::close(std::exchange(at_, next));
  }

  void visit(const std::string& name) {
    std::vector<std::string> folders;
    std::vector<std::string> files;
    forEachEntry(at_, buffer_.get(), [&](std::string_view entry, unsigned char kind) {
      if (kind == DT_DIR) {
        folders.emplace_back(entry);
      } else if (kind == DT_REG) {
        files.emplace_back(entry);
      }
    });
    const std::string path = path_.empty() ? "." : path_.substr(1);
    const bool isChild = pending_.size() == precedingDepth_ && !pending_.empty();
    const bool isReachable = path.size() < PATH_MAX;
    std::size_t end = isReachable ? std::min(files.size(), filesInRecord) : files.size();
    if (isChild) {
      addRecord(fromPreceding, name, files, 0, end);
    } else if (isReachable) {
      beginPieceWhereFull();
      addRecord(fromRoot, path, files, 0, end);
    } else {
      std::fputs("A folder is too deep to be reached by its path.\n", stderr);
      std::exit(1);
    }
    ++foldersOfPiece_;
    const bool isSplit = end < files.size();
    for (std::size_t begin = end; begin < files.size(); begin = end) {
      end = std::min(files.size(), begin + filesInRecord);
      beginPiece();
      addRecord(moreFiles, path, files, begin, end);
    }
    pending_.push_back(std::move(folders));
    precedingDepth_ = isSplit ? 0 : pending_.size();
  }

  void beginPieceWhereFull() {
    if (pieces_.empty() || foldersOfPiece_ >= foldersInPiece) {
      beginPiece();
    }
  }

  void beginPiece() {
    pieces_.push_back(list_.size());
    foldersOfPiece_ = 0;
  }

  void addRecord(Reach reach, const std::string& path, const std::vector<std::string>& files, std::size_t begin,
                 std::size_t end) {
    list_ += static_cast<char>(reach);
    list_ += path + '\0';
    for (std::size_t index = begin; index < end; ++index) {
      list_ += files[index] + '\0';
    }
    list_ += '\0';
  }

  void appendNumber(std::uint64_t value) {
    std::array<char, sizeof value> bytes{};
    std::memcpy(bytes.data(), &value, sizeof value);
    list_.append(bytes.data(), bytes.size());
  }

  int at_;
  std::unique_ptr<std::byte[]> buffer_ = std::make_unique_for_overwrite<std::byte[]>(bufferBytes);
  std::string path_;                               ///< of the open folder: empty, or names with a slash before each
  std::vector<std::vector<std::string>> pending_;  ///< the subfolders still to visit, level by level
  std::size_t precedingDepth_ = 0;                 ///< the level of the subfolders of the record before
  std::string list_;
  std::vector<std::uint64_t> pieces_;
  std::size_t foldersOfPiece_ = 0;
};

/// The list, mapped: reading it costs a replay next to nothing.
class List {
 public:
  explicit List(const char* path) {
    const int file = ::open(path, O_RDONLY | O_CLOEXEC);
    struct stat found{};
    if (file < 0 || ::fstat(file, &found) != 0) {
      fail(path);
    }
    size_ = static_cast<std::size_t>(found.st_size);
    void* const mapped = ::mmap(nullptr, size_, PROT_READ, MAP_PRIVATE | MAP_POPULATE, file, 0);
    if (mapped == MAP_FAILED) {
      fail(path);
    }
    text_ = static_cast<const char*>(mapped);
    count_ = number(size_ - sizeof(std::uint64_t));
  }

  std::size_t count() const { return count_; }
  const char* begin(std::size_t piece) const { return text_ + offset(piece); }
  const char* end(std::size_t piece) const { return piece + 1 < count_ ? begin(piece + 1) : text_ + table(); }

 private:
  std::size_t table() const { return size_ - (count_ + 1) * sizeof(std::uint64_t); }
  std::size_t offset(std::size_t piece) const { return number(table() + piece * sizeof(std::uint64_t)); }
  std::uint64_t number(std::size_t at) const {
    std::uint64_t value = 0;
    std::memcpy(&value, text_ + at, sizeof value);
    return value;
  }

  const char* text_ = nullptr;
  std::size_t size_ = 0;
  std::size_t count_ = 0;
};

void look(int folder, const char* name, int flags) {
  constexpr unsigned wanted = STATX_TYPE | STATX_INO | STATX_NLINK | STATX_UID | STATX_BLOCKS | STATX_MTIME;
  struct statx found{};
  ::statx(folder, name, flags | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC, wanted, &found);
}

/// Makes the calls of the records from `at` to `end`.
void replayPiece(int root, const char* at, const char* end, std::byte* buffer) {
  int folder = -1;
  while (at < end) {
    const char reach = *at++;
    const int next = ::openat(reach == fromPreceding ? folder : root, at, toRead);
    if (next < 0) {
      fail(at);
    }
    if (folder >= 0) {
      ::close(folder);
    }
    folder = next;
    if (reach != moreFiles) {
      look(folder, "", AT_EMPTY_PATH);
      while (::getdents64(folder, buffer, bufferBytes) > 0) {
      }
    }
    for (at += std::strlen(at) + 1; *at != '\0'; at += std::strlen(at) + 1) {
      look(folder, at, AT_SYMLINK_NOFOLLOW);
    }
    ++at;
  }
  ::close(folder);
}

void replay(const char* rootPath, const List& list, unsigned threads) {
  std::atomic<std::size_t> next = 0;
  const auto work = [&] {
    // With descriptors of its own, no thread waits for another's counting of their uses.
    static_cast<void>(::unshare(CLONE_FILES));
    const int root = ::open(rootPath, toRead & ~O_NOFOLLOW);
    const auto buffer = std::make_unique_for_overwrite<std::byte[]>(bufferBytes);
    for (std::size_t piece = next++; piece < list.count(); piece = next++) {
      replayPiece(root, list.begin(piece), list.end(piece), buffer.get());
    }
    ::close(root);
  };
  std::vector<std::jthread> others;
  for (unsigned index = 1; index < threads; ++index) {
    others.emplace_back(work);
  }
  work();
}

void writeList(const std::string& root, const char* path) {
  const std::string list = ListMaker(root).take();
  std::FILE* const file = std::fopen(path, "w");
  if (file == nullptr || std::fwrite(list.data(), 1, list.size(), file) != list.size() || std::fclose(file) != 0) {
    fail(path);
  }
}

}  // namespace

int main(int argumentCount, char** arguments) {
  const std::vector<std::string_view> words(arguments + 1, arguments + argumentCount);
  if (words.size() == 3 && words[0] == "list") {
    writeList(arguments[2], arguments[3]);
    return 0;
  }
  if (words.size() < 3 || words.size() > 4 || words[0] != "run") {
    std::fputs("Usage: replay_scan list ROOT LIST | run ROOT LIST [THREADS]\n", stderr);
    return 2;
  }
  unsigned threads = 2;
  if (words.size() == 4) {
    std::from_chars(words[3].data(), words[3].data() + words[3].size(), threads);
  }
  replay(arguments[2], List(arguments[3]), threads);
}
