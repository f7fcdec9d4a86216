// One pass over all items for each keystroke. Names are short and stand one behind the other, so that 50,000 of them
// cost about a millisecond.
//
// A query with a slash is looked for in paths as well, without a text for each path: the last slash of the query meets
// either a slash inside the path of the folder, which then holds the whole query, or the slash between that path and
// the name. So each folder is asked once, and each of its items has only a prefix to compare.

#include <array>
#include <cstring>

#include "base/Unicode.h"
#include "storage/StorageIndex.h"

namespace lumenary {
namespace {

enum Rank : std::size_t { exactName, beginningOfName, partOfName, partOfPath, noMatch };

bool holds(std::string_view text, std::string_view part) {
  // Linear for every text, unlike a search that starts anew at each byte.
  return ::memmem(text.data(), text.size(), part.data(), part.size()) != nullptr;
}

class PathQuery {
 public:
  PathQuery(std::string_view query, const std::vector<std::string_view>& folders) {
    const std::size_t slash = query.rfind('/');
    if (slash == std::string_view::npos) {
      return;
    }
    beforeSlash_ = query.substr(0, slash);
    behindSlash_ = query.substr(slash + 1);
    folders_.reserve(folders.size());
    for (const std::string_view folder : folders) {
      const std::string_view leading = folder == "/" ? "" : folder;
      folders_.push_back(holds(folder, query)              ? Folder::holdsQuery
                         : leading.ends_with(beforeSlash_) ? Folder::endsInBeginning
                                                           : Folder::neither);
    }
  }

  bool matches(const StorageIndex::SearchItem& item) const {
    if (folders_.empty() || folders_[item.parent] == Folder::neither) {
      return false;
    }
    return folders_[item.parent] == Folder::holdsQuery || item.lowercasedName.starts_with(behindSlash_);
  }

 private:
  enum class Folder : std::uint8_t { neither, holdsQuery, endsInBeginning };

  std::string_view beforeSlash_;
  std::string_view behindSlash_;
  std::vector<Folder> folders_;  ///< empty where the query has no slash
};

Rank rankOf(const StorageIndex::SearchItem& item, std::string_view query, const PathQuery& inPath) {
  if (item.lowercasedName.size() >= query.size() && holds(item.lowercasedName, query)) {
    if (item.lowercasedName.size() == query.size()) {
      return exactName;
    }
    return item.lowercasedName.starts_with(query) ? beginningOfName : partOfName;
  }
  return inPath.matches(item) ? partOfPath : noMatch;
}

}  // namespace

std::vector<StorageNode> searchNodes(const StorageIndex::SearchItems& items, std::string_view query, std::size_t limit,
                                     const std::stop_token& stop) {
  constexpr std::size_t itemsBetweenStops = 256;
  const std::string wanted = caseFolded(query);
  const PathQuery inPath(wanted, items.parents);
  std::array<std::vector<const StorageNode*>, noMatch> buckets;
  for (std::size_t index = 0; index < items.items.size() && buckets[exactName].size() < limit; ++index) {
    if (index % itemsBetweenStops == 0 && stop.stop_requested()) {
      return {};
    }
    const Rank rank = rankOf(items.items[index], wanted, inPath);
    if (rank != noMatch && buckets[rank].size() < limit) {
      buckets[rank].push_back(items.items[index].node);
    }
  }
  std::vector<StorageNode> found;
  for (const auto& bucket : buckets) {
    for (const StorageNode* node : bucket) {
      if (found.size() < limit) {
        found.push_back(*node);
      }
    }
  }
  return found;
}

}  // namespace lumenary
