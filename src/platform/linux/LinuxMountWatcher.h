#pragma once

#include <thread>

#include "platform/MountWatcher.h"

namespace lumenary {

/// The kernel tells a change of its list of mounts once, to whoever polls the list next. A thread that sleeps in that
/// poll passes it on as a count that stays until it is taken.
class LinuxMountWatcher final : public MountWatcher {
 public:
  LinuxMountWatcher();
  ~LinuxMountWatcher() override;
  LinuxMountWatcher(const LinuxMountWatcher&) = delete;
  LinuxMountWatcher& operator=(const LinuxMountWatcher&) = delete;

  const Descriptor& events() const override { return changes_; }
  bool read() override;

 private:
  void watch() const;

  Descriptor mounts_;
  Descriptor changes_;
  Descriptor end_;
  std::thread thread_;
};

}  // namespace lumenary
