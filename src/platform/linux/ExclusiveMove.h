#pragma once

#include <string>

#include "platform/linux/KernelFiles.h"

namespace lumenary {

struct MoveEnd {
  const Descriptor& folder;
  const std::string& name;
};

enum class MoveResult {
  moved,
  missing,       ///< nothing stood at the start
  changed,       ///< another thing stood at the start than the one that was confirmed
  strayed,       ///< as `changed`, but the other thing was moved, and its place was taken before it could go back
  occupied,      ///< something stands at the end
  notExclusive,  ///< this file system can't move a folder without the risk of overwriting
  failed,        ///< the cause says why
};

struct MoveReport {
  MoveResult result = MoveResult::failed;
  SystemError cause{};
  bool isSettled = true;  ///< false: a file may be left with a name at both ends, or the end could not be read back
};

/// Moves the thing of that identity from one opened folder to another of the same file system: never a copy, never over
/// something, and what counts is what is read back from the disk afterwards. Nothing is synced.
MoveReport moveExclusively(LinuxKernel& kernel, MoveEnd from, MoveEnd to, const FileIdentity& identity);

}  // namespace lumenary
