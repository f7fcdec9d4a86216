#include "apps/AppFolders.h"

#include <algorithm>
#include <limits>

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
  return found->second ? &*found->second : nullptr;
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
    if (around != listed_.end() && around->second) {
      const Entry* const entry = entryNamed(*around->second, lastPathComponent(path));
      return entry == nullptr ? std::nullopt : std::optional(entry->kind);
    }
  }
  const auto found = reader_.attributes(path, LinkPolicy::refuse);
  return found ? std::optional(found->identity.kind) : std::nullopt;
}

std::int64_t AppFolders::bytesAt(const std::string& path) const {
  const std::int64_t* const known = known_.find(path);
  return known != nullptr ? *known : allocatedSize(reader_, path, stop_);
}

const AppFolders::Entry* entryNamed(const AppFolders::Entries& entries, std::string_view name) {
  const auto found = std::ranges::lower_bound(entries, name, {}, &AppFolders::Entry::name);
  return found == entries.end() || found->name != name ? nullptr : &*found;
}

}  // namespace lumenary
