#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "base/Date.h"
#include "platform/Descriptor.h"
#include "platform/FileIdentity.h"
#include "platform/SystemError.h"

/// Reading what is in files. Measuring never does; whoever compares files is handed this beside a `FileReader`.
namespace lumenary {

/// Which file was opened and in which state. Two equal stamps of one file mean that nobody wrote to it in between.
struct ContentStamp {
  FileIdentity identity;
  std::int64_t byteCount = 0;       ///< how many bytes it holds
  std::int64_t allocatedBytes = 0;  ///< on the disk
  Date modified;
  Date changed;  ///< of the file or of its attributes; no program can set it

  bool operator==(const ContentStamp&) const = default;
};

/// All operations block, and may be called from any thread at once.
class ContentReader {
 public:
  virtual ~ContentReader() = default;

  /// Opens a regular file by its absolute path, through no link, or by its name in an open folder. Never waits for
  /// another process; leaves the date of the last access as it is where that is allowed.
  virtual SystemResult<Descriptor> openFile(const std::string& path) const = 0;
  virtual SystemResult<Descriptor> openFile(const Descriptor& folder, const char* name) const = 0;

  virtual SystemResult<ContentStamp> stamp(const Descriptor& file) const = 0;

  /// Fills `into` from that place on, and gives how many bytes there were: fewer only where the file ends.
  virtual SystemResult<std::size_t> read(const Descriptor& file, std::uint64_t offset,
                                         std::span<std::byte> into) const = 0;

  /// False where the bytes at that place would have to be read from the disk, as far as the system tells.
  virtual bool isInMemory(const Descriptor& file, std::uint64_t offset) const = 0;
  /// The part will be read soon. A hint.
  virtual void willRead(const Descriptor& file, std::uint64_t offset, std::uint64_t length) const = 0;
  /// The part needn't stay in memory. A hint.
  virtual void release(const Descriptor& file, std::uint64_t offset, std::uint64_t length) const = 0;
};

}  // namespace lumenary
