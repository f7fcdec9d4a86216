#pragma once

#include <functional>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

#include "cleanup/DuplicateGroup.h"
#include "cleanup/StorageTrashGate.h"
#include "platform/ContentReader.h"
#include "platform/DurableFiles.h"
#include "platform/FileReader.h"
#include "platform/PerfProbe.h"
#include "platform/Places.h"

/// Finds files of a finished scan that hold the same bytes: by size, then by a digest of their ends, then by one of the
/// whole. The disk isn't walked again, and only what shares size and ends with another file is read in full.
namespace lumenary {

class DuplicateFinder {
 public:
  static constexpr std::int64_t smallestByteCount = 10'485'760;

  /// All references must outlive the value.
  DuplicateFinder(const FileReader& reader, const ContentReader& contents, DurableFiles& files,
                  const StorageTrashGate& gate, const Places& places, const PerfProbe& probe)
      : reader_(reader), contents_(contents), files_(files), gate_(gate), places_(places), probe_(probe) {}

  /// The groups, the largest gain first. Reads one file after the other and keeps their digests for the next run; after
  /// a stop request the answer is empty and nothing is kept. A file that isn't as the scan saw it, that changes while
  /// it is read, or that has another name in the list is left out, and so is a copy whose removal would free nothing,
  /// as it has further names. Blocks; one run at a time.
  std::vector<DuplicateGroup> find(std::span<const FileEntry> entries, const std::stop_token& stop) const;

  /// A digest of a file; none where it can't be had.
  using Digest = std::function<std::optional<std::string>(const FileEntry& entry)>;
  using CanMove = std::function<bool(const FileEntry& entry)>;
  /// By what files are told apart before any is opened; none for a file that isn't as it was scanned.
  using Size = std::function<std::optional<std::int64_t>(const FileEntry& entry)>;
  /// The rule itself, without a disk.
  static std::vector<DuplicateGroup> groups(std::span<const FileEntry> entries, const CanMove& canMove,
                                            const Size& sizeOf, const Digest& partialDigest, const Digest& fullDigest,
                                            const std::stop_token& stop);

 private:
  const FileReader& reader_;
  const ContentReader& contents_;
  DurableFiles& files_;
  const StorageTrashGate& gate_;
  const Places& places_;
  const PerfProbe& probe_;
};

}  // namespace lumenary
