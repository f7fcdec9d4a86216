#pragma once

#include <expected>
#include <functional>
#include <string>

#include "cleanup/CleanupRefusal.h"
#include "platform/DurableFiles.h"
#include "platform/FileReader.h"
#include "platform/Trash.h"

namespace lumenary {

/// Moves the file that makes an item start to the Trash. What comes before the move, stopping the item, runs between
/// the look at the file and its move: the file that was looked at goes, or none. A journal stands on the disk
/// while it moves, so that the next start puts right what a crash leaves; the log of acts isn't told. Blocks.
class BackgroundItemRemoval {
 public:
  /// `support` is the folder of the program's own files. The references must outlive the value.
  BackgroundItemRemoval(const FileReader& reader, DurableFiles& files, Trash& trash, std::string support)
      : reader_(reader), files_(files), trash_(trash), support_(std::move(support)) {}

  /// What can't be opened or may not move is refused before anything is stopped.
  std::expected<void, CleanupRefusal> remove(const std::string& path, const std::function<void()>& stopItem) const;

 private:
  const FileReader& reader_;
  DurableFiles& files_;
  Trash& trash_;
  std::string support_;
};

}  // namespace lumenary
