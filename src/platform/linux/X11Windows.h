#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// Questions to a window manager, by the Extended Window Manager Hints. They wait for as long as the server does: it
/// may never answer.
namespace lumenary {

/// True where the active window of the display says that it is full screen, or is as large as the screen without being
/// the desktop itself. False for whatever can't be learned.
bool isFrontWindowFullScreen(const std::string& display);

/// The process of the active window, as the window itself tells; none where it doesn't.
std::optional<std::int32_t> frontWindowProcess(const std::string& display);

/// Asks all windows of a process to close, as their close buttons would. False where it has none or no window manager
/// runs. Whose a window is, the window itself tells; one of another machine isn't asked.
bool closeWindowsOf(const std::string& display, std::int32_t pid);

}  // namespace lumenary
