#pragma once

#include <string>
#include <vector>

#include "platform/Descriptor.h"

namespace lumenary {

/// Tells that something came to, left or was renamed in some folders. It has no thread: whoever owns it waits until
/// `events` can be read, and reads. One thread at a time.
class FolderWatcher {
 public:
  virtual ~FolderWatcher() = default;
  /// Watches these folders in place of the former ones. One that doesn't exist is watched from when it comes to be; one
  /// that may not be watched is left out without a word.
  virtual void watch(std::vector<std::string> folders) = 0;
  /// Can be read whenever there may be something new; empty before the first `watch`, and where the system can't watch.
  virtual const Descriptor& events() const = 0;
  /// Takes all that was told so far, without waiting. True where something changed in one of the folders, or may have:
  /// too much came for all of it to be told.
  virtual bool read() = 0;
};

}  // namespace lumenary
