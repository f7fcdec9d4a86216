#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lumenary {

/// Memory is written here when it is full.
struct SwapFile {
  std::string path;
  std::int64_t bytes = 0;

  bool operator==(const SwapFile&) const = default;
};

/// Files that have no name any more and take up space until the last program that holds them open lets go.
struct DeletedOpenFiles {
  std::int64_t bytes = 0;               ///< allocated on disks, each file once
  std::vector<std::string> programs{};  ///< that hold them, by name, each once; bytes as they are
  std::size_t unseenProcesses = 0;      ///< whose open files may not be seen

  bool operator==(const DeletedOpenFiles&) const = default;
};

/// Two readings of how much room there is.
struct RoomOnVolume {
  std::int64_t forImportantUse = 0;  ///< what the system would clear away by itself included
  std::int64_t now = 0;
};

/// What takes up space without being a file that a scan sees. From any thread.
class SystemFacts {
 public:
  virtual ~SystemFacts() = default;
  virtual std::string kernelRelease() const = 0;
  /// Files, not partitions.
  virtual std::vector<SwapFile> swapFiles() const = 0;
  virtual DeletedOpenFiles deletedOpenFiles() const = 0;
  /// What the programs that may be seen have open, and the folders they stand in; sorted, absolute paths.
  virtual std::vector<std::string> openPaths() const = 0;
  /// Kept free for the system on the volume that holds the path; none where it can't be read.
  virtual std::optional<std::int64_t> reservedBytes(const std::string& path) const = 0;
  /// None where the system clears nothing by itself.
  virtual std::optional<RoomOnVolume> room(const std::string& path) const = 0;
};

}  // namespace lumenary
