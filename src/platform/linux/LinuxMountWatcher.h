#pragma once

#include "platform/MountWatcher.h"

namespace lumenary {

/// The kernel marks its list of mounts as exceptional when it changes, until somebody asks. A poll descriptor of its
/// own around it can be read then, like any other file.
class LinuxMountWatcher final : public MountWatcher {
 public:
  LinuxMountWatcher();

  const Descriptor& events() const override { return poll_; }
  bool read() override;

 private:
  Descriptor mounts_;
  Descriptor poll_;
};

}  // namespace lumenary
