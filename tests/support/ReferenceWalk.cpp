#include "support/ReferenceWalk.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <ranges>
#include <tuple>
#include <utility>
#include <vector>

namespace lumenary {
namespace {

using Components = std::vector<std::string>;

Components componentsOf(const std::filesystem::path& path) {
  Components components;
  for (const auto& component : path) {
    components.push_back(component.string());
  }
  return components;
}

}  // namespace

ReferenceWalk referenceWalk(const std::string& root) {
  ReferenceWalk walk;
  walk.folderBytes[root] = 0;
  std::map<std::pair<dev_t, ino_t>, std::tuple<Components, std::filesystem::path, std::int64_t>> files;
  std::uint64_t number = 0;
  for (const auto& item : std::filesystem::recursive_directory_iterator(root)) {
    ++walk.itemCount;
    struct stat found{};
    ::lstat(item.path().c_str(), &found);
    if (S_ISDIR(found.st_mode)) {
      walk.folderBytes[item.path()] += 0;
    } else if (S_ISREG(found.st_mode)) {
      // A file with one name is a key of its own.
      const auto key =
          found.st_nlink > 1 ? std::pair(found.st_dev, found.st_ino) : std::pair(dev_t{0}, ino_t{++number});
      const auto candidate = std::tuple(componentsOf(item.path()), item.path(), std::int64_t{found.st_blocks} * 512);
      const auto known = files.try_emplace(key, candidate).first;
      known->second = std::min(known->second, candidate);
    }
  }
  for (const auto& [components, path, bytes] : files | std::views::values) {
    walk.totalBytes += bytes;
    for (std::filesystem::path folder = path.parent_path();; folder = folder.parent_path()) {
      walk.folderBytes[folder] += bytes;
      if (folder == root) {
        break;
      }
    }
  }
  return walk;
}

}  // namespace lumenary
