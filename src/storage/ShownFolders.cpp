#include "storage/ShownFolders.h"

#include <algorithm>
#include <span>
#include <tuple>
#include <utility>

#include "base/Path.h"

namespace lumenary {
namespace {

/// The children of each folder that are big enough to be shown, all in one array, each folder's side by side.
class ChildLists {
 public:
  explicit ChildLists(const FolderTable& folders) : starts_(static_cast<std::size_t>(folders.count()) + 1) {
    // The counts become the ends; placing the children from the last to the first then turns each end into its start.
    for (FolderID id = 1; id < folders.count(); ++id) {
      if (isBig(folders, id)) {
        ++starts_[static_cast<std::size_t>(folders.parent(id))];
      }
    }
    FolderID sum = 0;
    for (FolderID& start : starts_) {
      start = sum += start;
    }
    children_.resize(static_cast<std::size_t>(sum));
    for (FolderID id = folders.count() - 1; id > 0; --id) {
      if (isBig(folders, id)) {
        children_[static_cast<std::size_t>(--starts_[static_cast<std::size_t>(folders.parent(id))])] = id;
      }
    }
  }

  std::span<FolderID> of(FolderID folder) {
    const auto index = static_cast<std::size_t>(folder);
    const auto start = static_cast<std::size_t>(starts_[index]);
    return std::span(children_).subspan(start, static_cast<std::size_t>(starts_[index + 1]) - start);
  }

 private:
  static bool isBig(const FolderTable& folders, FolderID id) {
    return folders.directBytes(id) >= ShownFolders::smallestTotal;
  }

  std::vector<FolderID> starts_;
  std::vector<FolderID> children_;
};

}  // namespace

ShownFolders::ShownFolders(const FolderTable& folders) : folders_(folders) {
  ChildLists lists(folders);
  add(0, folders.path(0));
  std::vector<FolderID> pending{0};
  while (!pending.empty()) {
    const FolderID folder = pending.back();
    pending.pop_back();
    const std::span<FolderID> children = lists.of(folder);
    std::ranges::sort(children, {}, [&](FolderID child) {
      return std::tuple(-folders.directBytes(child), std::string_view(folders.name(child)));
    });
    for (std::size_t position = 0; position < children.size(); ++position) {
      const FolderID child = children[position];
      if (position >= childrenAlwaysKept && folders.directBytes(child) < largeChild) {
        break;  // those behind it are no larger
      }
      add(child, appendingPathComponent(shown_[positions_.at(folder)].path, folders.name(child)));
      pending.push_back(child);
    }
  }
}

std::string_view ShownFolders::show(FolderID folder) {
  std::vector<FolderID> hidden;
  FolderID above = folder;
  for (; !positions_.contains(above); above = folders_.parent(above)) {
    hidden.push_back(above);
  }
  std::size_t position = positions_.at(above);
  for (; !hidden.empty(); hidden.pop_back()) {
    position = add(hidden.back(), appendingPathComponent(shown_[position].path, folders_.name(hidden.back())));
  }
  return shown_[position].path;
}

std::size_t ShownFolders::add(FolderID folder, std::string path) {
  const std::size_t position = shown_.size();
  shown_.push_back({.path = std::move(path), .bytes = folders_.directBytes(folder)});
  positions_.emplace(folder, position);
  return position;
}

}  // namespace lumenary
