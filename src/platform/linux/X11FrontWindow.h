#pragma once

#include <string>

namespace lumenary {

/// True where the active window of the display says that it is full screen, or is as large as the screen without being
/// the desktop itself. False for whatever can't be learned. Waits for as long as the server does: it may never answer.
bool isFrontWindowFullScreen(const std::string& display);

}  // namespace lumenary
