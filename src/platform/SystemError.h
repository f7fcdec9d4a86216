#pragma once

#include <expected>
#include <string>

namespace lumenary {

/// Why the system refused: an errno of the call that failed.
struct SystemError {
  int code = 0;

  /// The system's own words for it, in English ("Permission denied").
  std::string description() const;
  bool operator==(const SystemError&) const = default;

  bool isMissing() const;  ///< nothing stands there (ENOENT, ENOTDIR)
  bool isLink() const;     ///< a link stood where none is followed (ELOOP)
  bool isNoSpace() const;  ///< the disk or the person's share of it is full (ENOSPC, EDQUOT)
  /// The file system has no locks; a lock that somebody holds is another matter (ENOLCK, EOPNOTSUPP, ENOSYS).
  bool isWithoutLocks() const;
};

template <class T>
using SystemResult = std::expected<T, SystemError>;

}  // namespace lumenary
