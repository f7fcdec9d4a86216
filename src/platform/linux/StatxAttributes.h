#pragma once

#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <chrono>

#include "base/Date.h"
#include "platform/FileIdentity.h"

/// How this platform reads a `statx` answer, so that an identity is the same whoever read it.
namespace lumenary {

inline FileKind kindOfMode(unsigned mode) {
  if (S_ISDIR(mode)) {
    return FileKind::folder;
  }
  if (S_ISREG(mode)) {
    return FileKind::file;
  }
  return S_ISLNK(mode) ? FileKind::link : FileKind::other;
}

inline FileIdentity identityOf(const struct statx& found) {
  return {.device = makedev(found.stx_dev_major, found.stx_dev_minor),
          .inode = found.stx_ino,
          .kind = kindOfMode(found.stx_mode)};
}

inline Date dateOf(const statx_timestamp& stamp) {
  using std::chrono::seconds;
  constexpr auto limit = std::chrono::duration_cast<seconds>(Date::duration::max()) - seconds(1);
  const seconds whole = std::clamp(seconds(stamp.tv_sec), -limit, limit);
  return Date(whole + std::chrono::microseconds(stamp.tv_nsec / 1000));
}

inline bool isUnchangeable(const struct statx& found) {
  return (found.stx_attributes & (STATX_ATTR_IMMUTABLE | STATX_ATTR_APPEND)) != 0;
}

}  // namespace lumenary
