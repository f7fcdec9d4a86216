#include "platform/linux/ExclusiveMove.h"

#include <cerrno>
#include <cstdio>

namespace lumenary {
namespace {

SystemResult<KernelStatus> statusAt(LinuxKernel& kernel, const MoveEnd& end) {
  return statusAt(kernel, end.folder, end.name.c_str());
}

bool isMissing(const SystemResult<KernelStatus>& status) { return !status && status.error().isMissing(); }

bool is(const SystemResult<KernelStatus>& status, const FileIdentity& identity) {
  return status && status->identity == identity;
}

int rename(LinuxKernel& kernel, const MoveEnd& from, const MoveEnd& to) {
  return kernel.renameat2(from.folder.number(), from.name.c_str(), to.folder.number(), to.name.c_str(),
                          RENAME_NOREPLACE);
}

MoveReport reportOf(const SystemError& cause) {
  switch (cause.code) {
    case EEXIST:
    case ENOTEMPTY:
      return {.result = MoveResult::occupied, .cause = cause};
    case ENOENT:
      return {.result = MoveResult::missing, .cause = cause};
    default:
      return {.result = MoveResult::failed, .cause = cause};
  }
}

/// For file systems without RENAME_NOREPLACE: `linkat` never overwrites either. Of two names of one file the old one
/// goes then; a name that may be the last one is never taken away.
MoveReport moveByLink(LinuxKernel& kernel, const MoveEnd& from, const MoveEnd& to, const FileIdentity& identity) {
  const bool isLinked =
      kernel.linkat(from.folder.number(), from.name.c_str(), to.folder.number(), to.name.c_str(), 0) == 0;
  const SystemError cause = isLinked ? SystemError{} : lastError();
  const auto linked = statusAt(kernel, to);
  // A network file system can report an error for a link that it made.
  if (!isLinked && (isMissing(linked) || (linked && linked->identity != identity))) {
    return reportOf(cause);
  }
  const auto left = statusAt(kernel, from);
  if (!linked || (!left && !isMissing(left))) {
    return {.result = MoveResult::failed, .cause = linked ? left.error() : linked.error(), .isSettled = false};
  }
  const bool isConfirmed = linked->identity == identity;
  if (!is(left, linked->identity)) {
    return {.result = isConfirmed ? MoveResult::moved : MoveResult::strayed, .cause = {}};
  }
  const MoveEnd& leaving = isConfirmed ? from : to;
  const auto removed = removeFile(kernel, leaving.folder, leaving.name.c_str());
  if (removed || isMissing(statusAt(kernel, leaving))) {
    return {.result = isConfirmed ? MoveResult::moved : MoveResult::changed, .cause = {}};
  }
  const bool isUndone = isConfirmed && removeFile(kernel, to.folder, to.name.c_str());
  return {.result = MoveResult::failed, .cause = removed.error(), .isSettled = isUndone};
}

}  // namespace

MoveReport moveExclusively(LinuxKernel& kernel, MoveEnd from, MoveEnd to, const FileIdentity& identity) {
  const auto before = statusAt(kernel, from);
  if (!before) {
    return reportOf(before.error());
  }
  if (before->identity != identity) {
    return {.result = MoveResult::changed, .cause = {}};
  }
  if (rename(kernel, from, to) != 0) {
    const SystemError cause = lastError();
    if (cause.code == EINVAL || cause.code == ENOSYS) {
      return identity.kind == FileKind::folder ? MoveReport{.result = MoveResult::notExclusive, .cause = cause}
                                               : moveByLink(kernel, from, to, identity);
    }
    // A network file system can report an error for a move that it did.
    const auto left = statusAt(kernel, from);
    const bool isDone = is(statusAt(kernel, to), identity) && !is(left, identity);
    return isDone ? MoveReport{.result = MoveResult::moved, .cause = {}, .isSettled = isMissing(left)}
                  : reportOf(cause);
  }
  const auto after = statusAt(kernel, to);
  if (after && after->identity != identity) {
    // Somebody put another thing there between the look and the move. It goes back; where its place was taken meanwhile
    // it stays in the Trash, under the record that was written for this path.
    const bool isBack = rename(kernel, to, from) == 0 || isMissing(statusAt(kernel, to));
    return {.result = isBack ? MoveResult::changed : MoveResult::strayed, .cause = {}};
  }
  return {.result = MoveResult::moved, .cause = {}, .isSettled = after.has_value()};
}

}  // namespace lumenary
