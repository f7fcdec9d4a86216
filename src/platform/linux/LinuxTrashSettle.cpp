#include <algorithm>
#include <array>
#include <chrono>

#include "base/Path.h"
#include "platform/linux/LinuxTrash.h"
#include "platform/linux/TrashInfoFile.h"

namespace lumenary {
namespace {

/// A part of an info file that an act left is as old as its intent; a younger one is being written by somebody else.
constexpr auto partAllowance = std::chrono::seconds(60);

/// As far as the file system can tell. Device numbers may change with a restart of the machine.
bool mayBe(const FileIdentity& standing, const FileIdentity& intended, const Mount& mount) {
  return standing.kind == intended.kind && (standing.inode == intended.inode || !keepsInodeNumbers(mount));
}

}  // namespace

/// What an intended act left in the Trash and at the origin.
struct LinuxTrash::Findings {
  SystemResult<OpenedItem> origin;
  std::optional<KernelStatus> inTrash{};
  TrashInfoFile::Content info;
  bool isInfoOfAct = false;  ///< names the origin, and isn't of a later act
  bool isAtOrigin = false;   ///< the item itself stands there
  bool isInTrash = false;
  bool isInDoubt = false;
};

/// No value where the Trash can't be read.
std::optional<LinuxTrash::Findings> LinuxTrash::find(const TrashFolder& trash, const std::string& name,
                                                     const TrashIntent& intent, const Mount& mount) {
  const auto inTrash = statusAt(kernel_, trash.files, name.c_str());
  Findings found{.origin = openItem(reader_, intent.originalPath), .info = TrashInfoFile(kernel_, trash, name).read()};
  if ((!inTrash && !inTrash.error().isMissing()) || (!found.info.text && !found.info.isMissing())) {
    return std::nullopt;
  }
  if (inTrash) {
    found.inTrash = *inTrash;
  }
  found.isInfoOfAct = found.info.isOf(intent.originalPath, trash, intent.date);
  found.isAtOrigin = found.origin && mayBe(found.origin->identity, intent.identity, mount);
  found.isInTrash = inTrash && mayBe(inTrash->identity, intent.identity, mount);
  // The info file tells whether it is the item or another's, even one of the same number: those are given again. Where
  // they don't last and there is none, it may be either.
  const bool isTold = found.info.info && found.info.info->deleted;
  if (found.isInTrash && isTold && !found.isInfoOfAct) {
    found.isInTrash = false;
  } else if (found.isInTrash && !keepsInodeNumbers(mount)) {
    found.isInDoubt = !isTold;
    found.isInTrash = found.isInfoOfAct;
    found.isAtOrigin = found.isAtOrigin && !found.isInfoOfAct;
  }
  if (!found.isInTrash && !found.origin && !found.origin.error().isMissing()) {
    found.isInDoubt = true;
  }
  return found;
}

ActState LinuxTrash::settle(const TrashIntent& intent) {
  const auto mounts = mountTable_.mounts();
  const Mount* mount = mounts ? mountHolding(*mounts, intent.originalPath) : nullptr;
  if (mount == nullptr) {
    return ActState::unknown;
  }
  const auto trash = folders_.openHolding(intent.trashPath, *mounts);
  // A Trash behind a link may be on a disk that is away.
  const auto folder = reader_.attributes(parentPath(parentPath(intent.trashPath)), LinkPolicy::refuse);
  if (!trash && folder && folder->identity.kind == FileKind::link) {
    return ActState::unknown;
  }
  if (!trash) {
    // Without its Trash nothing can be left there. Where neither place can be read, nothing is known.
    const auto origin = openItem(reader_, intent.originalPath);
    const bool isRead = trash.error().isMissing() && (origin || origin.error().isMissing());
    if (!isRead) {
      return ActState::unknown;
    }
    return origin && mayBe(origin->identity, intent.identity, *mount) ? ActState::atOrigin : ActState::neither;
  }
  if (!trash->top.empty() && !isSameOrInside(intent.originalPath, trash->top)) {
    return ActState::unknown;  // no line of ours: an item never leaves its volume
  }
  const std::string name(lastPathComponent(intent.trashPath));
  auto found = find(*trash, name, intent, *mount);
  if (!found || found->isInDoubt) {
    return ActState::unknown;
  }
  const bool hasTwoNames = found->isInTrash && found->origin && found->inTrash &&
                           found->origin->identity == found->inTrash->identity && found->inTrash->linkCount > 1 &&
                           intent.identity.kind != FileKind::folder;
  if (hasTwoNames) {
    // A file that died between its two names: the second one goes, the file stays. Another name of the same file may
    // have been moved here on its own; its info file tells.
    if (found->isInfoOfAct) {
      if (!removeFile(kernel_, trash->files, name.c_str())) {
        return ActState::unknown;
      }
      found->inTrash.reset();
    }
    found->isAtOrigin = true;
  }
  if (found->isAtOrigin) {
    return settleInfoOfAbsent(*trash, name, intent, *found);
  }
  return found->isInTrash ? settleInfoOfPresent(*trash, name, intent, *found) : ActState::neither;
}

/// Removes the info file that the act left for an item that isn't in the Trash.
ActState LinuxTrash::settleInfoOfAbsent(const TrashFolder& trash, const std::string& name, const TrashIntent& intent,
                                        const Findings& found) {
  if (found.inTrash || found.info.isMissing()) {
    return ActState::atOrigin;  // another item has the name, and the info file is that one's
  }
  const std::string whole = composeTrashInfo(trash.recordedPath(intent.originalPath), intent.date);
  const bool isPart = whole.starts_with(*found.info.text) && found.info.modified <= intent.date + partAllowance;
  if ((found.isInfoOfAct || isPart) && !TrashInfoFile(kernel_, trash, name).remove()) {
    return ActState::unknown;
  }
  return ActState::atOrigin;
}

/// Writes the info file again where the crash lost it.
ActState LinuxTrash::settleInfoOfPresent(const TrashFolder& trash, const std::string& name, const TrashIntent& intent,
                                         const Findings& found) {
  if (found.info.info) {
    return ActState::inTrash;
  }
  const TrashInfoFile infoFile(kernel_, trash, name);
  if (!infoFile.remove() || !infoFile.write(intent.originalPath, intent.date)) {
    return ActState::unknown;
  }
  return ActState::inTrash;
}

}  // namespace lumenary
