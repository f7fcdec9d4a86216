#pragma once

namespace lumenary {

/// What the person is doing right now, as far as it decides whether they may be spoken to. No signal means no. The
/// questions block briefly, a second at most where the desktop doesn't answer; from one thread at a time.
class Session {
 public:
  virtual ~Session() = default;
  virtual bool isFullScreenAppInFront() const = 0;
  virtual bool isMicrophoneInUse() const = 0;
};

}  // namespace lumenary
