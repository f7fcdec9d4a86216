#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Descriptor.h"
#include "platform/SystemError.h"

/// Small files that must survive a crash: the store's JSON files and the journals of acts.
namespace lumenary {

/// A file that only grows, locked by this process for as long as the value lives.
class GrowingFile {
 public:
  virtual ~GrowingFile() = default;
  /// Writes the bytes at the end and returns once they are on the disk. After an error nothing of them counts.
  virtual SystemResult<void> append(std::string_view bytes) = 0;
};

class DurableFiles {
 public:
  virtual ~DurableFiles() = default;

  /// The whole file. A file larger than `limit` is EFBIG, a folder EISDIR.
  virtual SystemResult<std::string> read(const std::string& path, std::size_t limit) = 0;
  /// Replaces the file as a whole or not at all: a temporary file beside it, synced, renamed over it, the folder
  /// synced.
  virtual SystemResult<void> writeAtomically(const std::string& path, std::string_view bytes) = 0;
  /// Makes the folder with all that stand above it, for this user only.
  virtual SystemResult<void> makeFolders(const std::string& path) = 0;
  /// The names in a folder, in no order.
  virtual SystemResult<std::vector<std::string>> names(const std::string& folder) = 0;
  virtual SystemResult<void> remove(const std::string& path) = 0;
  /// Removes from a folder the temporary files of writes that were killed: those older than a day that nobody locks.
  /// Best effort.
  virtual void removeRemains(const std::string& folder) = 0;

  /// Waits a few seconds for the lock on `path`, which is made where it is missing. EAGAIN where another process keeps
  /// it. The lock ends with the value or with the process.
  virtual SystemResult<Descriptor> lock(const std::string& path) = 0;
  /// The same without waiting.
  virtual SystemResult<Descriptor> lockNow(const std::string& path) = 0;
  /// Makes a new file (EEXIST where there is one) and locks it.
  virtual SystemResult<std::unique_ptr<GrowingFile>> grow(const std::string& path) = 0;
  /// True while another process, or another value of this one, holds the lock that `grow` took. Where the file system
  /// has no locks: for a day after the last line.
  virtual bool isGrowing(const std::string& path) = 0;
};

}  // namespace lumenary
