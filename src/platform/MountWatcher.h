#pragma once

#include "platform/Descriptor.h"

namespace lumenary {

/// Tells that something was mounted or unmounted. It has no thread: whoever owns it waits until `events` can be read,
/// and reads. One thread at a time.
class MountWatcher {
 public:
  virtual ~MountWatcher() = default;
  /// Empty where the system tells nothing.
  virtual const Descriptor& events() const = 0;
  /// Takes what was told, without waiting; true where something changed since.
  virtual bool read() = 0;
};

}  // namespace lumenary
