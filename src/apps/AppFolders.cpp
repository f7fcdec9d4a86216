#include "apps/AppFolders.h"

#include <algorithm>
#include <limits>
#include <span>

#include "base/Path.h"
#include "storage/AllocatedSize.h"

namespace lumenary {
namespace {

/// Opens a folder. Where links are refused, one that has taken the folder's place since the look is refused as well.
Descriptor opened(const FileReader& reader, const std::string& path, LinkPolicy links) {
  if (links == LinkPolicy::follow) {
    return reader.openFolder(path, LinkPolicy::follow).value_or(Descriptor());
  }
  const auto seen = reader.attributes(path, LinkPolicy::refuse);
  if (!seen || seen->identity.kind != FileKind::folder) {
    return {};
  }
  auto folder = reader.openFolder(path, LinkPolicy::follow);
  if (!folder) {
    return {};
  }
  const auto found = reader.attributes(*folder);
  return found && found->identity == seen->identity ? std::move(*folder) : Descriptor();
}

/// Reads for one measuring walk and keeps the list of the folder that it begins with: that is read first, and whole.
class FirstListing final : public FileReader {
 public:
  explicit FirstListing(const FileReader& real) : real_(real) {}

  SystemResult<Descriptor> openFolder(std::string_view path, LinkPolicy links) const override {
    return real_.openFolder(path, links);
  }
  SystemResult<Descriptor> openFolder(const Descriptor& parent, const char* name) const override {
    return real_.openFolder(parent, name);
  }
  SystemResult<std::span<const FolderEntry>> nextEntries(const Descriptor& folder,
                                                         FolderScratch& scratch) const override {
    const auto next = real_.nextEntries(folder, scratch);
    if (state_ == State::reading && next) {
      for (const FolderEntry& entry : *next) {
        entries_.push_back({.name = std::string(entry.name, entry.length), .kind = entry.kind});
      }
    }
    if (state_ == State::reading && (!next || next->empty())) {
      state_ = next ? State::whole : State::failed;
    }
    return next;
  }
  SystemResult<FileAttributes> attributes(const Descriptor& folder, const char* name) const override {
    return real_.attributes(folder, name);
  }
  SystemResult<FileAttributes> attributes(const Descriptor& folder) const override { return real_.attributes(folder); }
  SystemResult<FileAttributes> attributes(std::string_view path, LinkPolicy links) const override {
    return real_.attributes(path, links);
  }
  SystemResult<std::string> realPath(std::string_view path) const override { return real_.realPath(path); }

  std::optional<AppFolders::Entries> takeEntries() && {
    std::ranges::sort(entries_, {}, &AppFolders::Entry::name);
    return state_ == State::whole ? std::optional(std::move(entries_)) : std::nullopt;
  }

 private:
  enum class State : std::uint8_t { reading, whole, failed };

  const FileReader& real_;
  mutable AppFolders::Entries entries_;
  mutable State state_ = State::reading;
};

}  // namespace

std::optional<AppFolders::Entries> AppFolders::read(const std::string& path, LinkPolicy links, std::size_t most) const {
  const Descriptor folder = opened(reader_, path, links);
  if (!folder) {
    return std::nullopt;
  }
  Entries entries;
  FolderScratch scratch;
  while (!isStopped()) {
    const auto next = reader_.nextEntries(folder, scratch);
    if (!next) {
      return std::nullopt;
    }
    if (next->empty()) {
      break;
    }
    for (const FolderEntry& entry : *next) {
      entries.push_back({.name = std::string(entry.name, entry.length), .kind = entry.kind});
    }
    if (entries.size() > most) {
      return std::nullopt;
    }
  }
  std::ranges::sort(entries, {}, &Entry::name);
  return entries;
}

const AppFolders::Entries* AppFolders::entries(const std::string& path, LinkPolicy links) {
  auto found = listed_.find({path, links});
  if (found == listed_.end()) {
    found = listed_.emplace(std::pair(path, links), read(path, links, std::numeric_limits<std::size_t>::max())).first;
  }
  const std::optional<Entries>& listed = found->second;
  return listed ? &*listed : nullptr;
}

const AppFolders::Entries& AppFolders::entriesOrNone(const std::string& path, LinkPolicy links) {
  static const Entries none;
  const Entries* const found = entries(path, links);
  return found == nullptr ? none : *found;
}

std::optional<AppFolders::Entries> AppFolders::fewEntries(const std::string& path, std::size_t most) const {
  return read(path, LinkPolicy::refuse, most);
}

std::optional<FileKind> AppFolders::kindAt(const std::string& path) {
  const std::string parent(parentPath(path));
  for (const LinkPolicy links : {LinkPolicy::refuse, LinkPolicy::follow}) {
    const auto around = listed_.find({parent, links});
    const std::optional<Entries> none;
    const std::optional<Entries>& listed = around == listed_.end() ? none : around->second;
    if (listed) {
      const Entry* const entry = entryNamed(*listed, lastPathComponent(path));
      return entry == nullptr ? std::nullopt : std::optional(entry->kind);
    }
  }
  const auto found = reader_.attributes(path, LinkPolicy::refuse);
  return found ? std::optional(found->identity.kind) : std::nullopt;
}

std::int64_t AppFolders::bytesAt(const std::string& path) {
  if (const std::int64_t* const known = known_.find(path)) {
    return *known;
  }
  FirstListing reader(reader_);
  const std::int64_t bytes = allocatedSize(reader, path, stop_);
  if (auto entries = std::move(reader).takeEntries()) {
    listed_.emplace(std::pair(path, LinkPolicy::refuse), std::move(entries));
  }
  return bytes;
}

const AppFolders::Entry* entryNamed(const AppFolders::Entries& entries, std::string_view name) {
  const auto found = std::ranges::lower_bound(entries, name, {}, &AppFolders::Entry::name);
  return found == entries.end() || found->name != name ? nullptr : &*found;
}

}  // namespace lumenary
