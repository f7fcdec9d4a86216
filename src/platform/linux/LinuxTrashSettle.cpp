#include <chrono>

#include "base/Path.h"
#include "platform/linux/LinuxTrash.h"

namespace lumenary {
namespace {

/// An info file of an act that died is as old as its intent; a younger one belongs to somebody else.
constexpr std::int64_t settleWindowSeconds = 60;

/// Device numbers may change with a restart of the machine, inode numbers don't.
bool isSameThing(const FileIdentity& a, const FileIdentity& b) { return a.inode == b.inode && a.kind == b.kind; }

}  // namespace

ActState LinuxTrash::settle(const TrashIntent& intent) {
  const auto mounts = mountTable_.mounts();
  if (!mounts) {
    return ActState::unknown;
  }
  const auto origin = openItem(reader_, intent.originalPath);
  const bool isAtOrigin = origin && isSameThing(origin->identity, intent.identity);
  const auto trash = folders_.openHolding(intent.trashPath, *mounts);
  if (!trash) {
    // Without its Trash nothing can be left there. Where neither place can be read, nothing is known.
    const bool isTrashGone = trash.error().isMissing();
    if (!isTrashGone) {
      return ActState::unknown;
    }
    return isAtOrigin ? ActState::atOrigin : ActState::neither;
  }
  if (!trash->top.empty() && !isSameOrInside(intent.originalPath, trash->top)) {
    return ActState::unknown;  // no line of ours: an item never leaves its volume
  }
  const std::string name(lastPathComponent(intent.trashPath));
  const auto inTrash = statusAt(kernel_, trash->files, name.c_str());
  const bool isInTrash = inTrash && isSameThing(inTrash->identity, intent.identity);
  if (isAtOrigin && isInTrash && inTrash->linkCount > 1 && inTrash->identity.kind != FileKind::folder) {
    // A file that died between its two names: the second one goes, the file stays. Another name of the same file may
    // have been moved here on its own; its info file tells.
    const RecordedInfo recorded = readInfo(*trash, name);
    if (recorded.info && originOf(*recorded.info, trash->top) == intent.originalPath) {
      static_cast<void>(removeFile(kernel_, trash->files, name.c_str()));
    }
  }
  if (isAtOrigin) {
    return settleInfoOfAbsent(*trash, name, intent);
  }
  if (isInTrash) {
    return settleInfoOfPresent(*trash, name, intent);
  }
  const bool isKnown = (origin || origin.error().isMissing()) && (inTrash || inTrash.error().isMissing());
  return isKnown ? ActState::neither : ActState::unknown;
}

/// Removes the info file that the act left for an item that isn't in the Trash.
ActState LinuxTrash::settleInfoOfAbsent(const TrashFolder& trash, const std::string& name, const TrashIntent& intent) {
  if (statusAt(kernel_, trash.files, name.c_str())) {
    return ActState::atOrigin;  // another item has the name; the info file is that one's
  }
  const RecordedInfo recorded = readInfo(trash, name);
  const auto intentSeconds = std::chrono::floor<std::chrono::seconds>(intent.date).time_since_epoch().count();
  const auto modifiedSeconds = std::chrono::floor<std::chrono::seconds>(recorded.modified).time_since_epoch().count();
  const bool isOurs = !recorded.isMissing() && modifiedSeconds <= intentSeconds + settleWindowSeconds &&
                      (!recorded.info || originOf(*recorded.info, trash.top) == intent.originalPath);
  if (isOurs && !removeInfo(trash, name)) {
    return ActState::unknown;
  }
  return ActState::atOrigin;
}

/// Writes the info file again where the crash lost it.
ActState LinuxTrash::settleInfoOfPresent(const TrashFolder& trash, const std::string& name, const TrashIntent& intent) {
  const RecordedInfo recorded = readInfo(trash, name);
  if (recorded.info) {
    return ActState::inTrash;
  }
  if (!removeInfo(trash, name) || !writeInfo(trash, name, intent.originalPath, intent.date)) {
    return ActState::unknown;
  }
  return ActState::inTrash;
}

}  // namespace lumenary
