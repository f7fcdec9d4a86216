#include "platform/linux/LinuxTrash.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>

#include "base/Path.h"
#include "platform/linux/LinuxPlaces.h"
#include "platform/linux/TrashInfoFile.h"
#include "platform/linux/TrashName.h"

namespace lumenary {
namespace {

constexpr std::size_t longestName = 255;
constexpr std::size_t shortestLimit = 32;

TrashError refuse(TrashRefusal refusal, SystemError cause = {}, bool isSettled = true) {
  return {.refusal = refusal, .cause = cause, .isSettled = isSettled};
}

TrashRefusal refusalOf(const SystemError& cause) {
  switch (cause.code) {
    case EACCES:
    case EPERM:
      return TrashRefusal::folderClosed;
    case EROFS:
      return TrashRefusal::readOnlyVolume;
    case EXDEV:
      return TrashRefusal::onlyByCopy;
    case EBUSY:
      return TrashRefusal::mountInside;
    case ENOSPC:
    case EDQUOT:
      return TrashRefusal::noSpace;
    default:
      return TrashRefusal::failed;
  }
}

TrashRefusal refusalOf(const MoveReport& report) {
  switch (report.result) {
    case MoveResult::missing:
      return TrashRefusal::missing;
    case MoveResult::changed:
    case MoveResult::strayed:
      return TrashRefusal::changed;
    case MoveResult::occupied:
      return TrashRefusal::occupied;
    case MoveResult::notExclusive:
      return TrashRefusal::noExclusiveMove;
    case MoveResult::moved:
    case MoveResult::failed:
      return refusalOf(report.cause);
  }
  return TrashRefusal::failed;
}

TrashRefusal recordRefusal(const SystemError& cause) {
  return cause.isNoSpace() ? TrashRefusal::noSpace : TrashRefusal::recordUnwritable;
}

Date now() { return std::chrono::floor<Date::duration>(std::chrono::system_clock::now()); }

}  // namespace

/// How one attempt under one name ended.
struct LinuxTrash::Attempt {
  enum class Result { moved, nameTaken, nameTooLong, refused } result = Result::refused;
  TrashError error{};
  bool isSettled = true;
};

Places LinuxTrash::guardedPlaces() const {
  Places places = places_;
  if (!places.accountHome.empty()) {
    return places;
  }
  if (!accountHome_) {
    accountHome_ = accountHomeOf(places.userID);
  }
  if (accountHome_) {
    places.accountHome = *accountHome_;
  } else {
    places.home.clear();  // what can't be asked for can't be guarded: nothing moves
  }
  return places;
}

std::expected<TrashedItem, TrashError> LinuxTrash::move(const OpenedItem& item, std::int64_t allocatedBytes,
                                                        IntentRecorder& recorder) {
  const auto mounts = mountTable_.mounts();
  if (!mounts) {
    return std::unexpected(refuse(TrashRefusal::guarded));
  }
  const GuardList guard(reader_, *mounts, guardedPlaces());
  if (guard.keeps(item.path, item.identity) || guard.keepsBelow(reader_, item.parent)) {
    return std::unexpected(refuse(TrashRefusal::guarded));
  }
  const auto isInside = [&](const Mount& mount) { return isSameOrInside(mount.point, item.path); };
  if (std::ranges::any_of(*mounts, isInside)) {
    return std::unexpected(refuse(TrashRefusal::mountInside));
  }
  if (auto allowed = check(item); !allowed) {
    return std::unexpected(allowed.error());
  }
  // The item was looked at for a while: its folder must still be the one that its path leads to, or the record would be
  // of another place.
  const auto parentNow = reader_.openFolder(parentPath(item.path), LinkPolicy::refuse);
  const auto statusNow = parentNow ? statusOf(kernel_, *parentNow) : std::unexpected(parentNow.error());
  const auto statusThen = statusOf(kernel_, item.parent);
  if (!statusNow || !statusThen || statusNow->identity != statusThen->identity) {
    return std::unexpected(refuse(TrashRefusal::changed));
  }
  const auto trash = folders_.openFor(item, *mounts);
  if (!trash) {
    return std::unexpected(trash.error());
  }
  return moveInto(*trash, item, allocatedBytes, recorder);
}

std::expected<void, TrashError> LinuxTrash::check(const OpenedItem& item) {
  const auto parent = statusOf(kernel_, item.parent);
  if (!parent) {
    return std::unexpected(refuse(TrashRefusal::failed, parent.error()));
  }
  const auto status = statusAt(kernel_, item.parent, item.name.c_str());
  if (!status) {
    return std::unexpected(status.error().isMissing() ? refuse(TrashRefusal::missing)
                                                      : refuse(TrashRefusal::failed, status.error()));
  }
  if (status->identity != item.identity) {
    return std::unexpected(refuse(TrashRefusal::changed));
  }
  if (status->isUnchangeable) {
    return std::unexpected(refuse(TrashRefusal::unchangeable));
  }
  const bool isForeign = places_.userID != 0 && status->owner != places_.userID;
  if (isForeign && status->identity.kind == FileKind::folder) {
    return std::unexpected(refuse(TrashRefusal::foreignInside));
  }
  const bool isSticky = (parent->mode & S_ISVTX) != 0 && parent->owner != places_.userID;
  if (parent->isUnchangeable || (isForeign && isSticky)) {
    return std::unexpected(refuse(TrashRefusal::folderClosed));
  }
  if (kernel_.faccessat(item.parent.number(), ".", W_OK | X_OK, AT_EACCESS) != 0) {
    return std::unexpected(refuse(refusalOf(lastError()), lastError()));
  }
  return {};
}

std::expected<TrashedItem, TrashError> LinuxTrash::moveInto(const TrashFolder& trash, const OpenedItem& item,
                                                            std::int64_t allocatedBytes, IntentRecorder& recorder) {
  std::size_t limit = longestName - TrashInfoFile::extension.size();
  for (unsigned number = 0; number < trashNameAttempts;) {
    const std::string name = trashName(item.name, number, limit);
    const Attempt attempt = this->attempt(trash, item, name, recorder);
    switch (attempt.result) {
      case Attempt::Result::moved:
        if (item.identity.kind == FileKind::folder) {
          noteSize(trash, name, allocatedBytes);
        }
        return TrashedItem{.trashPath = trash.pathOfItem(name), .isSettled = attempt.isSettled};
      case Attempt::Result::refused:
        return std::unexpected(attempt.error);
      case Attempt::Result::nameTaken:
        ++number;
        break;
      case Attempt::Result::nameTooLong:
        // Some file systems hold fewer bytes a name than most.
        limit = limit * 3 / 4;
        if (limit < shortestLimit) {
          return std::unexpected(refuse(TrashRefusal::noFreeName));
        }
        break;
    }
  }
  return std::unexpected(refuse(TrashRefusal::noFreeName));
}

LinuxTrash::Attempt LinuxTrash::attempt(const TrashFolder& trash, const OpenedItem& item, const std::string& name,
                                        IntentRecorder& recorder) {
  using Result = Attempt::Result;
  if (isTaken(trash, name)) {
    return {.result = Result::nameTaken};
  }
  const TrashIntent intent{
      .originalPath = item.path, .trashPath = trash.pathOfItem(name), .identity = item.identity, .date = now()};
  if (auto recorded = recorder.intend(intent); !recorded) {
    return {.error = refuse(recordRefusal(recorded.error()), recorded.error())};
  }
  const TrashInfoFile infoFile(kernel_, trash, name);
  if (auto written = infoFile.write(item.path, intent.date); !written) {
    const SystemError cause = written.error();
    if (cause.code == EEXIST) {
      return {.result = Result::nameTaken};
    }
    if (cause.code == ENAMETOOLONG) {
      return {.result = Result::nameTooLong};
    }
    return {.error = refuse(recordRefusal(cause), cause, infoFile.isMissing())};
  }
  const MoveReport report = moveExclusively(kernel_, {item.parent, item.name}, {trash.files, name}, item.identity);
  if (report.result == MoveResult::moved) {
    // Somebody who empties the Trash meanwhile may take the info file for a left one.
    const bool hasInfo = infoFile.status() || infoFile.write(item.path, intent.date);
    const bool isSynced = hasInfo && sync(kernel_, trash.files) && sync(kernel_, item.parent);
    return {.result = Result::moved, .isSettled = isSynced && report.isSettled};
  }
  if (report.result == MoveResult::strayed) {
    // The info file is the other thing's now: it is how its owner gets it back.
    const bool isSynced = sync(kernel_, trash.files) && sync(kernel_, item.parent);
    return {.error = refuse(TrashRefusal::changed, {}, isSynced)};
  }
  const auto atOrigin = statusAt(kernel_, item.parent, item.name.c_str());
  const bool isSurelyAtOrigin = atOrigin && atOrigin->identity == item.identity && report.isSettled;
  if (report.result == MoveResult::failed && !isSurelyAtOrigin) {
    // Perhaps it was moved after all, or has a name at both ends: the info file stays until the next start has looked.
    return {.error = refuse(refusalOf(report), report.cause, false)};
  }
  const bool isSettled = infoFile.remove() && report.isSettled;
  if (report.result == MoveResult::occupied && isSettled) {
    return {.result = Result::nameTaken};
  }
  return {.error = refuse(refusalOf(report), report.cause, isSettled)};
}

bool LinuxTrash::isTaken(const TrashFolder& trash, const std::string& name) {
  return statusAt(kernel_, trash.files, name.c_str()).has_value() ||
         TrashInfoFile(kernel_, trash, name).status().has_value();
}

std::expected<TrashedItem, TrashError> LinuxTrash::putBack(const std::string& trashPath,
                                                           const std::string& originalPath, Date recorded,
                                                           IntentRecorder& recorder) {
  const auto mounts = mountTable_.mounts();
  if (!mounts || !originalPath.starts_with('/') || standardise(originalPath) != originalPath ||
      GuardList(reader_, *mounts, guardedPlaces()).keepsOut(originalPath)) {
    return std::unexpected(refuse(TrashRefusal::guarded));
  }
  const std::string name(lastPathComponent(trashPath));
  const auto trash = folders_.openHolding(trashPath, *mounts);
  if (!trash) {
    return std::unexpected(refuse(TrashRefusal::notInTrash, trash.error()));
  }
  const auto status = statusAt(kernel_, trash->files, name.c_str());
  if (!status) {
    return std::unexpected(refuse(TrashRefusal::notInTrash, status.error()));
  }
  // Another item may have got the name since. A lost info file is no reason to keep a person's folder from them.
  const TrashInfoFile infoFile(kernel_, *trash, name);
  const auto info = infoFile.read();
  if (!info.isMissing() && !info.isOf(originalPath, *trash, recorded)) {
    return std::unexpected(info.text ? refuse(TrashRefusal::notInTrash)
                                     : refuse(refusalOf(info.text.error()), info.text.error()));
  }
  const auto parent = reader_.openFolder(parentPath(originalPath), LinkPolicy::refuse);
  if (!parent) {
    const bool isGone = parent.error().isMissing() || parent.error().isLink();
    return std::unexpected(refuse(isGone ? TrashRefusal::parentGone : TrashRefusal::parentClosed, parent.error()));
  }
  const std::string originalName(lastPathComponent(originalPath));
  if (statusAt(kernel_, *parent, originalName.c_str())) {
    return std::unexpected(refuse(TrashRefusal::occupied));
  }
  if (auto intended = recorder.intend(
          {.originalPath = originalPath, .trashPath = trashPath, .identity = status->identity, .date = recorded});
      !intended) {
    return std::unexpected(refuse(recordRefusal(intended.error()), intended.error()));
  }
  const MoveReport report = moveExclusively(kernel_, {trash->files, name}, {*parent, originalName}, status->identity);
  if (report.result != MoveResult::moved) {
    const bool isGone = report.result == MoveResult::missing || report.result == MoveResult::changed ||
                        report.result == MoveResult::strayed;
    return std::unexpected(
        refuse(isGone ? TrashRefusal::notInTrash : refusalOf(report), report.cause, report.isSettled));
  }
  const bool isSynced = sync(kernel_, *parent) && sync(kernel_, trash->files);
  const bool isInfoGone = infoFile.remove();
  if (status->identity.kind == FileKind::folder) {
    sizeChanges_[trash->path][name] = std::nullopt;
  }
  return TrashedItem{.trashPath = trashPath, .isSettled = isSynced && isInfoGone && report.isSettled};
}

void LinuxTrash::noteSize(const TrashFolder& trash, const std::string& name, std::int64_t allocatedBytes) {
  const auto info = TrashInfoFile(kernel_, trash, name).status();
  if (info) {
    sizeChanges_[trash.path][name] =
        FolderSize{.allocatedBytes = allocatedBytes, .infoModifiedSeconds = info->modifiedSeconds};
  }
}

void LinuxTrash::writeSizes() {
  const auto mounts = mountTable_.mounts();
  if (!mounts) {
    return;
  }
  for (const auto& [path, changes] : sizeChanges_) {
    if (const auto trash = folders_.openHolding(path + "/files/any", *mounts)) {
      writeFolderSizes(kernel_, *trash, changes);
    }
  }
  sizeChanges_.clear();
}

}  // namespace lumenary
