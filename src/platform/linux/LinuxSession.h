#pragma once

#include <string>

#include "platform/Session.h"

namespace lumenary {

/// Full screen by the X11 display's EWMH properties; on Wayland only what runs in its X11 server is seen. The
/// microphone by the kernel's list of sound devices that record.
class LinuxSession final : public Session {
 public:
  /// `display` as in $DISPLAY, empty where there is none; `soundFolder` is /proc/asound.
  LinuxSession(std::string display, std::string soundFolder)
      : display_(std::move(display)), soundFolder_(std::move(soundFolder)) {}

  bool isFullScreenAppInFront() const override;
  bool isMicrophoneInUse() const override;

 private:
  std::string display_;
  std::string soundFolder_;
};

}  // namespace lumenary
