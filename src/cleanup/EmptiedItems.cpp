#include "cleanup/EmptiedItems.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "base/Path.h"

namespace lumenary {
namespace {

using Item = CleanupTransaction::Item;
using Outcome = Item::Outcome;

constexpr std::string_view drivesFolder = "/Volumes/";
constexpr std::string_view driveTrash = "/.Trash";

bool isGone(const FileReader& reader, const std::string& path) {
  const auto standing = reader.attributes(path, LinkPolicy::refuse);
  return !standing && standing.error().isMissing();
}

/// Where the drive is mounted in whose own Trash the path lies; empty for any other path.
std::string_view driveOf(std::string_view trashPath) {
  if (trashPath.starts_with(drivesFolder)) {
    const std::size_t end = trashPath.find('/', drivesFolder.size());
    return trashPath.substr(0, end);
  }
  const std::size_t trash = trashPath.find(driveTrash);
  return trash == std::string_view::npos ? std::string_view() : trashPath.substr(0, trash);
}

class Drives {
 public:
  Drives(const FileReader& reader, const MountTable& mountTable) : reader_(reader), mounts_(mountTable.mounts()) {}

  bool isAway(const std::string& trashPath) const {
    const std::string_view drive = driveOf(trashPath);
    if (drive.empty()) {
      return false;
    }
    if (drive.starts_with(drivesFolder)) {
      return isGone(reader_, std::string(drive));
    }
    return !mounts_ || std::ranges::find(*mounts_, drive, &Mount::point) == mounts_->end();
  }

 private:
  const FileReader& reader_;
  SystemResult<std::vector<Mount>> mounts_;
};

}  // namespace

bool recordEmptied(std::vector<CleanupTransaction>& transactions, const FileReader& reader,
                   const MountTable& mountTable) {
  const Drives drives(reader, mountTable);
  bool hasChanged = false;
  for (CleanupTransaction& transaction : transactions) {
    for (Item& item : transaction.items) {
      if (item.outcome != Outcome::movedToTrash || !item.trashURL || !isGone(reader, item.trashURL->path) ||
          drives.isAway(item.trashURL->path)) {
        continue;
      }
      const bool isBack = !isGone(reader, item.originalURL.path);
      item.outcome = isBack ? Outcome::restored : Outcome::emptied;
      item.message = isBack ? "Put back from Trash" : "Trash emptied";
      hasChanged = true;
    }
  }
  return hasChanged;
}

}  // namespace lumenary
