// One pass over all items for each keystroke. The names stand one behind the other in the order of the items, a NUL
// between them, so that a query is looked for in hundreds of them at once: starting a search for each name would cost
// more than the search.
//
// A query with a slash is looked for in paths as well, without a text for each path: the last slash of the query meets
// either a slash inside the path of the folder, which then holds the whole query, or the slash between that path and
// the name. So each folder is asked once, and each of its items has only a prefix to compare.

#include <algorithm>
#include <array>
#include <cstring>
#include <span>

#include "base/Unicode.h"
#include "storage/StorageIndex.h"

namespace lumenary {
namespace {

enum Rank : std::size_t { exactName, beginningOfName, partOfName, partOfPath, noMatch };

/// Where `part` first stands in `text`; its end where it doesn't. Linear for every text, unlike a search that starts
/// anew at each byte.
const char* firstOf(std::string_view part, std::string_view text) {
  const void* const found = ::memmem(text.data(), text.size(), part.data(), part.size());
  return found == nullptr ? text.end() : static_cast<const char*>(found);
}

bool holds(std::string_view text, std::string_view part) { return firstOf(part, text) != text.end(); }

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
      if (holds(folder, query)) {
        folders_.push_back(Folder::holdsQuery);
      } else {
        folders_.push_back(leading.ends_with(beforeSlash_) ? Folder::endsInBeginning : Folder::neither);
      }
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

/// The ranks of some items by their names.
void rankNames(std::span<const StorageIndex::SearchItem> items, std::string_view query, std::span<Rank> ranks) {
  std::ranges::fill(ranks, noMatch);
  const char* const end = items.back().lowercasedName.end();
  std::size_t index = 0;
  for (const char* at = items.front().lowercasedName.begin(); at < end;) {
    at = firstOf(query, {at, end});
    while (index < items.size() && items[index].lowercasedName.end() <= at) {
      ++index;
    }
    if (at == end || index == items.size()) {
      return;
    }
    const std::string_view name = items[index].lowercasedName;
    const Rank atBeginning = name.size() == query.size() ? exactName : beginningOfName;
    ranks[index] = at == name.begin() ? atBeginning : partOfName;
    at = name.end();
  }
}

}  // namespace

std::vector<StorageNode> searchNodes(const StorageIndex::SearchItems& items, std::string_view query, std::size_t limit,
                                     const std::stop_token& stop) {
  constexpr std::size_t itemsBetweenStops = 256;
  const std::string wanted = caseFolded(query);
  if (wanted.contains('\0')) {
    return {};
  }
  const PathQuery inPath(wanted, items.parents);
  std::array<std::vector<const StorageNode*>, noMatch> buckets;
  std::array<Rank, itemsBetweenStops> ranks{};
  for (auto rest = std::span(items.items); !rest.empty() && buckets[exactName].size() < limit;) {
    if (stop.stop_requested()) {
      return {};
    }
    const auto some = rest.first(std::min(rest.size(), itemsBetweenStops));
    rest = rest.subspan(some.size());
    rankNames(some, wanted, std::span(ranks).first(some.size()));
    for (std::size_t index = 0; index < some.size(); ++index) {
      const Rank rank = ranks[index] == noMatch && inPath.matches(some[index]) ? partOfPath : ranks[index];
      if (rank != noMatch && buckets[rank].size() < limit) {
        buckets[rank].push_back(some[index].node);
      }
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
