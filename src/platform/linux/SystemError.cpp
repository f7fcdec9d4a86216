#include "platform/SystemError.h"

#include <cerrno>
#include <cstring>

namespace lumenary {

std::string SystemError::description() const {
  const char* words = ::strerrordesc_np(code);
  return words != nullptr ? words : "Unknown error " + std::to_string(code);
}

bool SystemError::isMissing() const { return code == ENOENT || code == ENOTDIR; }

bool SystemError::isLink() const { return code == ELOOP; }

bool SystemError::isNoSpace() const { return code == ENOSPC || code == EDQUOT; }

bool SystemError::isWithoutLocks() const { return code == ENOLCK || code == EOPNOTSUPP || code == ENOSYS; }

}  // namespace lumenary
