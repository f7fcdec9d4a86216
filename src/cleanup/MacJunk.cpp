#include "cleanup/MacJunk.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "base/Path.h"

namespace lumenary {
namespace {

constexpr auto systemNames = std::to_array<std::string_view>(
    {".Spotlight-V100", ".fseventsd", ".Trashes", ".DocumentRevisions-V100", ".TemporaryItems"});

bool isLeftover(std::string_view name) { return name.starts_with("._") || name == ".DS_Store"; }

bool isEntered(std::string_view name) { return !name.ends_with(".app") && !name.ends_with(".photoslibrary"); }

class JunkWalk {
 public:
  JunkWalk(const FileReader& reader, std::size_t limit, const std::stop_token& stop)
      : reader_(reader), limit_(limit), stop_(stop) {}

  std::vector<FileEntry> run(const std::string& root) {
    const auto attributes = reader_.attributes(root, LinkPolicy::follow);
    if (attributes) {
      device_ = attributes->identity.device;
      waiting_.push_back(reader_.realPath(root).value_or(root));
    }
    while (!waiting_.empty() && !isOver()) {
      const std::string path = std::move(waiting_.back());
      waiting_.pop_back();
      look(path);
    }
    return std::move(found_);
  }

 private:
  bool isOver() const { return found_.size() >= limit_ || stop_.stop_requested(); }

  void look(const std::string& path) {
    const auto folder = reader_.openFolder(path, LinkPolicy::refuse);
    const auto attributes = folder ? reader_.attributes(*folder) : std::unexpected(folder.error());
    if (!attributes || attributes->identity.device != device_) {
      return;
    }
    for (;;) {
      const auto entries = reader_.nextEntries(*folder, scratch_);
      if (!entries || entries->empty()) {
        return;
      }
      for (const FolderEntry& entry : *entries) {
        if (isOver()) {
          return;
        }
        take(*folder, path, entry);
      }
    }
  }

  void take(const Descriptor& folder, const std::string& path, const FolderEntry& entry) {
    const std::string_view name(entry.name, entry.length);
    if (std::ranges::find(systemNames, name) != systemNames.end()) {
      return;
    }
    if (entry.kind == FileKind::folder && isEntered(name)) {
      waiting_.push_back(appendingPathComponent(path, name));
    }
    if (entry.kind != FileKind::file || !isLeftover(name)) {
      return;
    }
    const auto attributes = reader_.attributes(folder, entry.name);
    if (attributes) {
      found_.push_back({.id = UUID::random(),
                        .url = {.path = appendingPathComponent(path, name), .isFolder = false},
                        .name = std::string(name),
                        .kind = FileEntry::Kind::file,
                        .byteCount = attributes->allocatedBytes,
                        .modifiedAt = attributes->modified});
    }
  }

  const FileReader& reader_;
  std::size_t limit_;
  const std::stop_token& stop_;
  std::uint64_t device_ = 0;
  FolderScratch scratch_;
  std::vector<std::string> waiting_;
  std::vector<FileEntry> found_;
};

}  // namespace

std::vector<FileEntry> macJunk(const FileReader& reader, const std::string& volume, std::size_t limit,
                               const std::stop_token& stop) {
  return volume == "/" ? std::vector<FileEntry>() : JunkWalk(reader, limit, stop).run(volume);
}

}  // namespace lumenary
