#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "platform/SystemError.h"

/// What may be done to other processes. Nothing is ever ended by force.
namespace lumenary {

class AppControl {
 public:
  virtual ~AppControl() = default;

  /// Asks a process to end (SIGTERM). `isMeant` is asked once a handle on the process is held, so that what it finds
  /// and what gets the signal are one process, whoever has its number afterwards. False where it isn't meant, is gone
  /// or can't be asked.
  virtual bool terminate(std::int32_t pid, const std::function<bool()>& isMeant) = 0;
  /// The ordinary request to quit, with the app's own question about what isn't saved: its windows are asked to close
  /// where that is possible, else the process is asked to end. The rest as for `terminate`.
  virtual bool requestQuit(std::int32_t pid, const std::function<bool()>& isMeant) = 0;

  /// Lets a process have only what others leave of the processor and the disk. False where it can't be done or couldn't
  /// be undone.
  virtual bool lowerPriority(std::int32_t pid) = 0;
  /// Back to the usual. What is gone is no error.
  virtual void restorePriority(std::int32_t pid) = 0;

  /// The process of the window in front; none where that can't be told.
  virtual std::optional<std::int32_t> frontProcess() = 0;

  /// Drops what the memory holds of files. The system asks for a password; false where it isn't given. Waits for it.
  virtual bool emptyFileCache() = 0;
  /// Opens an address with an installed app, given by its path; with an empty one just the app.
  virtual bool open(const std::string& appPath, const std::string& address) = 0;
};

}  // namespace lumenary
