#include "cleanup/UseDate.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>
#include <vector>

#include "base/Path.h"
#include "base/Text.h"

namespace lumenary {
namespace {

/// Each level of the walk keeps its folder open.
constexpr std::size_t deepestLevel = 64;

constexpr std::array<std::string_view, 6> packageExtensions = {"app",           "bundle",       "framework",
                                                               "photoslibrary", "musiclibrary", "plugin"};

bool isPackage(std::string_view name) {
  const std::string_view extension = pathExtension(name);
  return std::ranges::any_of(packageExtensions,
                             [&](std::string_view package) { return equalsIgnoringCase(extension, package); });
}

class ChangeWalk {
 public:
  explicit ChangeWalk(const FileReader& reader) : reader_(reader) {}

  std::optional<Date> newest() const { return newest_; }

  void take(const std::string& path) {
    const auto attributes = reader_.attributes(path, LinkPolicy::refuse);
    if (!attributes) {
      return;
    }
    take(attributes->modified);
    auto folder = reader_.openFolder(path, LinkPolicy::follow);
    const auto opened = folder ? reader_.attributes(*folder) : attributes;
    if (!folder || !opened || opened->identity != attributes->identity) {
      return;
    }
    seen_ = 0;
    levels_.clear();
    enter(std::move(*folder), attributes->identity.device);
    while (!levels_.empty() && seen_ < useEntryLimit) {
      enterNext();
    }
  }

 private:
  struct Level {
    Descriptor folder;
    decltype(FileIdentity::device) device{};
    std::vector<std::string> waiting;  ///< folders in it, the next one last
  };

  void take(Date date) { newest_ = std::max(newest_.value_or(date), date); }

  void enter(Descriptor folder, decltype(FileIdentity::device) device) {
    Level level{.folder = std::move(folder), .device = device, .waiting = {}};
    for (;;) {
      const auto entries = reader_.nextEntries(level.folder, scratch_);
      if (!entries || entries->empty()) {
        break;
      }
      for (const FolderEntry& entry : *entries) {
        if (seen_ == useEntryLimit) {
          return;
        }
        ++seen_;
        look(level, entry);
      }
    }
    levels_.push_back(std::move(level));
  }

  void look(Level& level, const FolderEntry& entry) {
    const auto attributes = reader_.attributes(level.folder, entry.name);
    if (!attributes) {
      return;
    }
    take(attributes->modified);
    const bool isOfVolume =
        attributes->identity.kind == FileKind::folder && attributes->identity.device == level.device;
    if (isOfVolume && !isPackage({entry.name, entry.length})) {
      level.waiting.emplace_back(entry.name, entry.length);
    }
  }

  void enterNext() {
    Level& level = levels_.back();
    if (level.waiting.empty() || levels_.size() == deepestLevel) {
      levels_.pop_back();
      return;
    }
    const std::string name = std::move(level.waiting.back());
    level.waiting.pop_back();
    if (auto folder = reader_.openFolder(level.folder, name.c_str())) {
      enter(std::move(*folder), level.device);
    }
  }

  const FileReader& reader_;
  FolderScratch scratch_;
  std::vector<Level> levels_;
  std::size_t seen_ = 0;
  std::optional<Date> newest_;
};

}  // namespace

std::optional<UseDate> lastChangeBelow(const FileReader& reader, std::span<const std::string> folders) {
  ChangeWalk walk(reader);
  for (const std::string& folder : folders) {
    walk.take(folder);
  }
  const auto newest = walk.newest();
  return newest ? std::optional(UseDate{.date = *newest}) : std::nullopt;
}

std::optional<UseDate> lastUseOfFiles(const FileReader& reader, const FileMetadata& metadata,
                                      std::span<const std::string> files) {
  if (const auto opened = metadata.lastOpened(files)) {
    return UseDate{.date = *opened, .isOpened = true};
  }
  std::optional<Date> newest;
  for (const std::string& file : files) {
    if (const auto attributes = reader.attributes(file, LinkPolicy::refuse)) {
      newest = std::max(newest.value_or(attributes->modified), attributes->modified);
    }
  }
  return newest ? std::optional(UseDate{.date = *newest}) : std::nullopt;
}

}  // namespace lumenary
