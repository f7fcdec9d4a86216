// The measuring walk goes depth first with one folder in hand at a time. A folder is read to its end: what is not a
// folder is looked at and counted at once, the names of the folders in it are put on a stack of bytes that all levels
// share. Then the folder on top of that stack is looked at by its name in the open folder around it and, if it stands
// on the same volume, opened and read in its turn. No path is ever put together, so depth costs nothing but a level: an
// open folder, its identity, and where its names begin on the stack.
//
// Only the deepest 64 levels keep their folder open. When the walk comes back up to one that was closed, it reopens it
// as the folder around the one just finished. If that isn't the folder it was, somebody has moved the tree away under
// the walk, and what was still waiting above can't be reached any more: the walk ends with what it has.
//
// A folder is looked at by name before it is opened, not afterwards through its descriptor: that costs the same one
// call, and neither triggers an automount nor opens a folder of another volume.

#include "storage/AllocatedSize.h"

#include <atomic>
#include <mutex>
#include <system_error>
#include <thread>

#include "base/CheckedSum.h"
#include "storage/FileIdentitySet.h"

namespace lumenary {
namespace {

class MeasuringWalk {
 public:
  MeasuringWalk(const FileReader& reader, std::uint32_t userID, std::stop_token stop)
      : reader_(reader), userID_(userID), stop_(std::move(stop)) {}

  Measurement measure(const std::string& path);
  Measurement measure(const Descriptor& parent, const char* name);

 private:
  static constexpr std::size_t openLevels = 64;

  struct Level {
    Descriptor folder;  ///< empty where it was closed to bound the number of descriptors
    FileIdentity identity;
    std::size_t firstName = 0;  ///< where the names of its waiting folders begin
  };

  template <class Open>
  Measurement measureItem(const SystemResult<FileAttributes>& attributes, Open open);
  void walkFrom(Descriptor root, const FileIdentity& identity);
  void enter(Descriptor folder, const FileIdentity& identity);
  void enterLastWaiting();
  bool leave();
  void count(const FileAttributes& attributes);
  void noteFolder(const FileAttributes& attributes);

  const FileReader& reader_;
  const std::uint32_t userID_;
  const std::stop_token stop_;
  FolderScratch scratch_;
  std::vector<Level> levels_;
  std::string waiting_;           ///< names, each with its NUL; those of the deepest level are last
  FileIdentitySet countedFiles_;  ///< only those with several names
  Measurement result_;
};

Measurement MeasuringWalk::measure(const std::string& path) {
  const auto attributes = reader_.attributes(path, LinkPolicy::refuse);
  return measureItem(attributes, [&]() -> SystemResult<Descriptor> {
    auto folder = reader_.openFolder(path, LinkPolicy::follow);
    if (!folder) {
      return folder;
    }
    // A link that has taken the folder's place since was followed just now.
    const auto opened = reader_.attributes(*folder);
    if (!opened || opened->identity != attributes->identity) {
      return {};
    }
    return folder;
  });
}

Measurement MeasuringWalk::measure(const Descriptor& parent, const char* name) {
  return measureItem(reader_.attributes(parent, name), [&] { return reader_.openFolder(parent, name); });
}

template <class Open>
Measurement MeasuringWalk::measureItem(const SystemResult<FileAttributes>& attributes, Open open) {
  result_ = {};
  levels_.clear();
  waiting_.clear();
  countedFiles_ = {};
  if (!attributes) {
    return result_;
  }
  if (attributes->identity.kind != FileKind::folder) {
    count(*attributes);
    return result_;
  }
  noteFolder(*attributes);
  if (SystemResult<Descriptor> folder = open(); folder && *folder) {
    walkFrom(std::move(*folder), attributes->identity);
  } else {
    result_.holdsUnreadable = true;
  }
  return result_;
}

void MeasuringWalk::walkFrom(Descriptor root, const FileIdentity& identity) {
  enter(std::move(root), identity);
  while (!waiting_.empty() && !stop_.stop_requested()) {
    if (waiting_.size() > levels_.back().firstName) {
      enterLastWaiting();
    } else if (!leave()) {
      return;
    }
  }
}

void MeasuringWalk::enter(Descriptor folder, const FileIdentity& identity) {
  levels_.push_back({std::move(folder), identity, waiting_.size()});
  if (levels_.size() > openLevels) {
    levels_[levels_.size() - openLevels - 1].folder = Descriptor();
  }
  const Descriptor& current = levels_.back().folder;
  while (!stop_.stop_requested()) {
    const auto entries = reader_.nextEntries(current, scratch_);
    if (!entries || entries->empty()) {
      result_.holdsUnreadable = result_.holdsUnreadable || !entries;
      return;
    }
    for (const FolderEntry& entry : *entries) {
      if (entry.kind == FileKind::folder) {
        waiting_.append(entry.name, entry.length + 1);
      } else if (const auto attributes = reader_.attributes(current, entry.name)) {
        count(*attributes);
      }
    }
  }
}

void MeasuringWalk::enterLastWaiting() {
  const Level& around = levels_.back();
  const std::size_t endBefore = waiting_.rfind('\0', waiting_.size() - 2);
  const std::size_t start = std::max(around.firstName, endBefore == std::string::npos ? 0 : endBefore + 1);
  const char* name = waiting_.data() + start;

  Descriptor folder;
  const auto attributes = reader_.attributes(around.folder, name);
  if (attributes && attributes->identity.kind == FileKind::folder &&
      attributes->identity.device == around.identity.device) {
    noteFolder(*attributes);
    if (auto opened = reader_.openFolder(around.folder, name)) {
      folder = std::move(*opened);
    } else {
      result_.holdsUnreadable = true;
    }
  }
  waiting_.resize(start);
  if (folder) {
    enter(std::move(folder), attributes->identity);
  }
}

bool MeasuringWalk::leave() {
  const Level finished = std::move(levels_.back());
  levels_.pop_back();
  Level& around = levels_.back();
  if (around.folder) {
    return true;
  }
  auto reopened = reader_.openFolder(finished.folder, "..");
  if (!reopened) {
    return false;
  }
  const auto attributes = reader_.attributes(*reopened);
  if (!attributes || attributes->identity != around.identity) {
    return false;
  }
  around.folder = std::move(*reopened);
  return true;
}

void MeasuringWalk::count(const FileAttributes& attributes) {
  if (attributes.identity.kind == FileKind::folder) {
    return;
  }
  if (attributes.linkCount >= 2 && !countedFiles_.insert(attributes.identity).isNew) {
    return;
  }
  result_.allocatedBytes = checkedSum(result_.allocatedBytes, attributes.allocatedBytes);
  result_.holdsUnchangeable |= attributes.isUnchangeable;
}

void MeasuringWalk::noteFolder(const FileAttributes& attributes) {
  result_.holdsForeignFolder |= userID_ != 0 && attributes.owner != userID_;
  result_.holdsUnchangeable |= attributes.isUnchangeable;
}

}  // namespace

Measurement measure(const FileReader& reader, const std::string& path, std::uint32_t userID, std::stop_token stop) {
  return MeasuringWalk(reader, userID, std::move(stop)).measure(path);
}

Measurement measure(const FileReader& reader, const Descriptor& parent, const char* name, std::uint32_t userID,
                    std::stop_token stop) {
  return MeasuringWalk(reader, userID, std::move(stop)).measure(parent, name);
}

std::int64_t allocatedSize(const FileReader& reader, const std::string& path, std::stop_token stop) {
  return measure(reader, path, 0, std::move(stop)).allocatedBytes;
}

std::vector<std::int64_t> allocatedSizes(const FileReader& reader, std::span<const std::string> paths,
                                         std::stop_token stop, const std::function<void(std::size_t)>& measured) {
  std::vector<std::int64_t> sizes(paths.size());
  std::atomic<std::size_t> next = 0;
  std::mutex reporting;
  std::size_t done = 0;

  const auto work = [&] {
    MeasuringWalk walk(reader, 0, stop);
    for (std::size_t index = next++; index < paths.size() && !stop.stop_requested(); index = next++) {
      sizes[index] = walk.measure(paths[index]).allocatedBytes;
      if (!measured) {
        continue;
      }
      const std::lock_guard lock(reporting);
      measured(++done);
    }
  };

  std::jthread second;
  if (paths.size() > 1) {
    try {
      second = std::jthread(work);
    } catch (const std::system_error&) {
      // The system has no thread to give: the calling one measures all.
    }
  }
  work();
  if (second.joinable()) {
    second.join();
  }
  return sizes;
}

}  // namespace lumenary
