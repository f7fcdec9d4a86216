#pragma once

#include <chrono>
#include <string>
#include <utility>

#include "platform/Session.h"
#include "platform/linux/PatientAnswer.h"

namespace lumenary {

/// Full screen by the X11 display's EWMH properties; on Wayland only what runs in its X11 server is seen. The
/// microphone by the kernel's list of sound devices that record.
class LinuxSession final : public Session {
 public:
  /// `display` as in $DISPLAY, empty where there is none; `soundFolder` is /proc/asound. A display that doesn't answer
  /// within `patience` gave no signal.
  LinuxSession(std::string display, std::string soundFolder,
               std::chrono::milliseconds patience = std::chrono::seconds(1))
      : display_(std::move(display)), soundFolder_(std::move(soundFolder)), answer_(patience) {}

  bool isFullScreenAppInFront() const override;
  bool isMicrophoneInUse() const override;

 private:
  std::string display_;
  std::string soundFolder_;
  mutable PatientAnswer<bool> answer_;
};

}  // namespace lumenary
