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
constexpr std::string_view itemsFolder = "/files/";

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
  // The Trash of a drive is "/.Trash-1000" or "/.Trash/1000" in its top folder; the name of an item may look so too.
  const std::string_view folder = trashPath.substr(0, trashPath.rfind(itemsFolder));
  const std::size_t trash = folder.rfind(driveTrash);
  const std::string_view rest = trash == std::string_view::npos ? "" : folder.substr(trash + driveTrash.size());
  const bool isDrive = rest.size() > 1 && (rest.front() == '-' || rest.front() == '/') &&
                       rest.find_first_not_of("0123456789", 1) == std::string_view::npos;
  return isDrive ? trashPath.substr(0, trash) : std::string_view();
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
      const auto original = reader.attributes(item.originalURL.path, LinkPolicy::refuse);
      if (!original && !original.error().isMissing()) {
        continue;
      }
      const bool isBack = original.has_value();
      item.outcome = isBack ? Outcome::restored : Outcome::emptied;
      item.message = isBack ? "Put back from Trash" : "Trash emptied";
      hasChanged = true;
    }
  }
  return hasChanged;
}

}  // namespace lumenary
