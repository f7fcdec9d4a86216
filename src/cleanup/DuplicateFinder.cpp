#include "cleanup/DuplicateFinder.h"

#include <algorithm>
#include <chrono>
#include <set>
#include <unordered_map>
#include <utility>

#include "base/CheckedSum.h"
#include "base/Path.h"
#include "base/StableSort.h"
#include "base/Text.h"
#include "base/UUID.h"
#include "cleanup/FileDigest.h"
#include "cleanup/HashCache.h"

namespace lumenary {
namespace {

constexpr std::string_view cacheName = "file-hashes.json";
constexpr std::size_t cacheByteLimit = std::size_t{64} * 1024 * 1024;

using Files = std::vector<const FileEntry*>;

/// Those that share their key with another one, by key, in the order in which the keys come up.
template <class Key, class KeyOf>
std::vector<std::pair<Key, Files>> sharing(const Files& files, KeyOf keyOf) {
  std::vector<std::pair<Key, Files>> groups;
  std::unordered_map<Key, std::size_t> positions;
  for (const FileEntry* file : files) {
    const Key key = keyOf(*file);
    const auto [position, isNew] = positions.try_emplace(key, groups.size());
    if (isNew) {
      groups.emplace_back(key, Files());
    }
    groups[position->second].second.push_back(file);
  }
  std::erase_if(groups, [](const auto& group) { return group.second.size() < 2; });
  return groups;
}

bool isCandidate(const FileEntry& entry, const DuplicateFinder::CanMove& canMove) {
  if (entry.kind != FileEntry::Kind::file || entry.byteCount < DuplicateFinder::smallestByteCount) {
    return false;
  }
  const std::string lowered = loweredASCII(entry.url.path);
  return !lowered.contains(".photoslibrary/") && !lowered.contains(".app/") && !isInTrash(entry.url.path) &&
         canMove(entry);
}

/// A file without a digest stands alone.
std::string digestOrUnique(const DuplicateFinder::Digest& digest, const FileEntry& entry) {
  auto text = digest(entry);
  return text ? *std::move(text) : UUID::random().text();
}

DuplicateGroup groupOf(const std::string& digest, Files files) {
  // Paths differ, so the order is total.
  std::ranges::sort(files, [](const FileEntry* a, const FileEntry* b) { return keepFirst(*a, *b); });
  DuplicateGroup group{.id = digest, .keep = *files.front(), .extras = {}, .sameFolder = true};
  const std::string_view folder = parentPath(group.keep.url.path);
  for (const FileEntry* extra : std::span(files).subspan(1)) {
    group.sameFolder = group.sameFolder && parentPath(extra->url.path) == folder;
    group.extras.push_back(*extra);
  }
  return group;
}

std::int64_t reclaimable(const DuplicateGroup& group) {
  std::int64_t bytes = 0;
  for (const FileEntry& extra : group.extras) {
    bytes = checkedSum(bytes, extra.byteCount);
  }
  return bytes;
}

std::vector<DuplicateGroup> largestFirst(std::vector<DuplicateGroup> groups) {
  return stableSorted(std::move(groups), [](const DuplicateGroup& group) { return -reclaimable(group); });
}

/// A list of scans that was stored tells dates to the second.
bool isSameSecond(Date a, Date b) {
  using std::chrono::seconds;
  return std::chrono::floor<seconds>(a) == std::chrono::floor<seconds>(b);
}

/// True where a file is as the scan saw it.
bool isAsScanned(const FileEntry& entry, const FileIdentity& identity, std::int64_t allocatedBytes, Date modified) {
  return identity.kind == FileKind::file && (!entry.identity || *entry.identity == identity) &&
         allocatedBytes == entry.byteCount && (!entry.modifiedAt || isSameSecond(*entry.modifiedAt, modified));
}

/// The files of one run as the disk has them.
class FilesOnDisk {
 public:
  FilesOnDisk(const FileReader& reader, const ContentReader& contents) : reader_(reader), contents_(contents) {}

  /// How many bytes the file holds, where it is as scanned and was met under no other name before. Not the blocks: of
  /// two equal files the one in more pieces has more of them.
  std::optional<std::int64_t> length(const FileEntry& entry) {
    const auto found = reader_.attributes(entry.url.path, LinkPolicy::refuse);
    if (!found || !isAsScanned(entry, found->identity, found->allocatedBytes, found->modified) ||
        !known_.insert(found->identity).second) {
      return std::nullopt;
    }
    if (found->linkCount >= 2) {
      linked_.insert(entry.url.path);
    }
    return found->length;
  }

  /// It has further names, so its removal frees nothing.
  bool hasFurtherNames(const FileEntry& entry) const { return linked_.contains(entry.url.path); }

  std::optional<std::string> digest(const FileEntry& entry, DigestKind kind, const std::stop_token& stop) const {
    const auto file = contents_.openFile(entry.url.path);
    const auto before = file ? contents_.stamp(*file) : std::unexpected(file.error());
    if (!before || !isAsScanned(entry, before->identity, before->allocatedBytes, before->modified)) {
      return std::nullopt;
    }
    auto digest = kind == DigestKind::full ? fullDigest(contents_, *file, stop) : partialDigest(contents_, *file);
    const auto after = contents_.stamp(*file);
    return after && *after == *before ? std::move(digest) : std::nullopt;
  }

 private:
  const FileReader& reader_;
  const ContentReader& contents_;
  std::set<FileIdentity> known_;
  std::set<std::string, std::less<>> linked_;
};

}  // namespace

std::vector<DuplicateGroup> DuplicateFinder::groups(std::span<const FileEntry> entries, const CanMove& canMove,
                                                    const Size& sizeOf, const Digest& partialDigest,
                                                    const Digest& fullDigest, const std::stop_token& stop) {
  std::unordered_map<const FileEntry*, std::int64_t> sizes;
  Files candidates;
  for (const FileEntry& entry : entries) {
    const auto size = isCandidate(entry, canMove) ? sizeOf(entry) : std::nullopt;
    if (size) {
      sizes.emplace(&entry, *size);
      candidates.push_back(&entry);
    }
  }
  const auto hashed = [&](const Files& files, const Digest& digest) {
    return sharing<std::string>(files, [&](const FileEntry& entry) {
      return stop.stop_requested() ? std::string() : digestOrUnique(digest, entry);
    });
  };
  std::vector<DuplicateGroup> groups;
  std::vector<Files> alike;
  for (const auto& [size, files] :
       sharing<std::int64_t>(candidates, [&](const FileEntry& entry) { return sizes.at(&entry); })) {
    for (auto& [digest, sharers] : hashed(files, partialDigest)) {
      alike.push_back(std::move(sharers));
    }
  }
  for (const Files& files : alike) {
    for (auto& [digest, same] : hashed(files, fullDigest)) {
      groups.push_back(groupOf(digest, std::move(same)));
    }
  }
  if (stop.stop_requested()) {
    return {};
  }
  return largestFirst(std::move(groups));
}

std::vector<DuplicateGroup> DuplicateFinder::find(std::span<const FileEntry> entries,
                                                  const std::stop_token& stop) const {
  if (stop.stop_requested()) {
    return {};
  }
  const bool usesCache = !probe_.isDisabled("hashcache");
  const std::string cachePath = appendingPathComponent(places_.support, cacheName);
  HashCache::Records records;
  if (usesCache) {
    const auto text = files_.read(cachePath, cacheByteLimit);
    records = text ? decodeHashRecords(*text).value_or(HashCache::Records()) : HashCache::Records();
  }
  HashCache cache(std::move(records));
  FilesOnDisk disk(reader_, contents_);
  const auto digestOf = [&](DigestKind kind) -> Digest {
    return [&, kind](const FileEntry& entry) -> std::optional<std::string> {
      const auto compute = [&] { return disk.digest(entry, kind, stop); };
      return usesCache ? cache.hash(entry, kind, compute) : compute();
    };
  };
  auto found = groups(
      entries, [this](const FileEntry& entry) { return gate_.canMoveToTrash(entry); },
      [&](const FileEntry& entry) { return disk.length(entry); }, digestOf(DigestKind::partial),
      digestOf(DigestKind::full), stop);
  if (usesCache && !stop.stop_requested() && files_.makeFolders(places_.support)) {
    // A cache that can't be kept costs time alone.
    [[maybe_unused]] const auto saved = files_.writeAtomically(cachePath, encodeHashRecords(cache.used()));
  }
  for (DuplicateGroup& group : found) {
    std::erase_if(group.extras, [&](const FileEntry& extra) { return disk.hasFurtherNames(extra); });
  }
  std::erase_if(found, [](const DuplicateGroup& group) { return group.extras.empty(); });
  return largestFirst(std::move(found));
}

}  // namespace lumenary
