#include "cleanup/TakenFolders.h"

#include <algorithm>
#include <functional>

#include "base/Text.h"

namespace lumenary {
namespace {

/// Takes a path apart and gives, after each component, the hash of the path so far: it goes on from that of the folder
/// around it.
class HashedPath {
 public:
  explicit HashedPath(std::string_view path) : path_(path) {}

  /// False at the end.
  bool next() {
    if (end_ == path_.size()) {
      return false;
    }
    const std::size_t begin = std::min(end_ + 1, path_.size());
    end_ = std::min(path_.find('/', begin), path_.size());
    hash_ = (hash_ ^ std::hash<std::string_view>()(path_.substr(begin, end_ - begin))) * 0x9E3779B97F4A7C15;
    return true;
  }
  std::uint64_t hash() const { return hash_; }
  std::string_view soFar() const { return path_.substr(0, end_); }

 private:
  std::string_view path_;
  std::size_t end_ = 0;
  std::uint64_t hash_ = 0;
};

}  // namespace

bool TakenFolders::cover(std::string_view path) {
  // All paths that begin with the same bytes stand side by side: "/a", "/a b", "/a/c".
  while (!around_.empty() && !path.starts_with(around_.back())) {
    around_.pop_back();
  }
  return std::ranges::any_of(
      around_, [&](std::string_view taken) { return path.size() > taken.size() && path[taken.size()] == '/'; });
}

void PathSet::insert(std::string_view path) {
  HashedPath hashed(path);
  while (hashed.next()) {
  }
  paths_.emplace(hashed.hash(), path);
}

bool PathSet::holdsAround(std::string_view path) const {
  for (HashedPath hashed(path); !paths_.empty() && hashed.next();) {
    const auto [begin, end] = paths_.equal_range(hashed.hash());
    if (std::any_of(begin, end, [&](const auto& known) { return known.second == hashed.soFar(); })) {
      return true;
    }
  }
  return false;
}

std::size_t characterCount(std::string_view text) {
  std::size_t count = 0;
  while (!text.empty()) {
    text.remove_prefix(std::max<std::size_t>(1, utf8SequenceLength(text)));
    ++count;
  }
  return count;
}

}  // namespace lumenary
