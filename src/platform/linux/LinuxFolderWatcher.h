#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/FolderWatcher.h"

namespace lumenary {

/// inotify. A folder that is missing is waited for in the nearest folder above it that exists.
class LinuxFolderWatcher final : public FolderWatcher {
 public:
  void watch(std::vector<std::string> folders) override;
  const Descriptor& events() const override { return queue_; }
  bool read() override;

 private:
  struct Place {
    std::string path;
    std::optional<int> watched;  ///< the number of the watch on it, or on the folder in which it is waited for
    bool isThere = false;
  };
  struct Change {
    bool isInFolder = false;  ///< something changed in a folder that is watched
    std::set<int> lost{};     ///< watches whose folder is gone or elsewhere
    bool needsLook = false;   ///< a folder that is waited for may have come, or one went
  };
  void note(int number, std::uint32_t mask, Change& change) const;
  bool findMissing(const std::set<int>& lost);
  void place(Place& place);
  std::optional<int> addWatch(std::string_view path);
  void removeUnused(const std::set<int>& former);
  std::set<int> numbers() const;

  Descriptor queue_;
  std::vector<Place> places_;
};

}  // namespace lumenary
