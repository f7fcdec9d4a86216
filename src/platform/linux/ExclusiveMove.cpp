#include "platform/linux/ExclusiveMove.h"

#include <cerrno>
#include <cstdio>
#include <optional>

namespace lumenary {
namespace {

std::optional<FileIdentity> identityAt(LinuxKernel& kernel, const MoveEnd& end) {
  const auto status = statusAt(kernel, end.folder, end.name.c_str());
  return status ? std::optional(status->identity) : std::nullopt;
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
  if (kernel.linkat(from.folder.number(), from.name.c_str(), to.folder.number(), to.name.c_str(), 0) != 0) {
    return reportOf(lastError());
  }
  const auto linked = identityAt(kernel, to);
  if (!linked || identityAt(kernel, from) != linked) {
    return {.result = MoveResult::moved, .cause = {}};
  }
  const bool isConfirmed = *linked == identity;
  const MoveEnd& leaving = isConfirmed ? from : to;
  if (kernel.unlinkat(leaving.folder.number(), leaving.name.c_str(), 0) == 0) {
    return {.result = isConfirmed ? MoveResult::moved : MoveResult::changed, .cause = {}};
  }
  const SystemError cause = lastError();
  const bool isUndone = isConfirmed && kernel.unlinkat(to.folder.number(), to.name.c_str(), 0) == 0;
  return {.result = MoveResult::failed, .cause = cause, .isSettled = isUndone};
}

}  // namespace

MoveReport moveExclusively(LinuxKernel& kernel, MoveEnd from, MoveEnd to, const FileIdentity& identity) {
  const auto before = statusAt(kernel, from.folder, from.name.c_str());
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
    return identityAt(kernel, to) == identity ? MoveReport{.result = MoveResult::moved, .cause = {}} : reportOf(cause);
  }
  const auto after = identityAt(kernel, to);
  if (after && *after != identity) {
    // Somebody put another thing there between the look and the move. It goes back; where its place was taken meanwhile
    // it stays in the Trash, under the record that was written for this path.
    if (rename(kernel, to, from) == 0) {
      return {.result = MoveResult::changed, .cause = {}};
    }
  }
  return {.result = MoveResult::moved, .cause = {}};
}

}  // namespace lumenary
