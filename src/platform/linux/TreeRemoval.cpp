#include "platform/linux/TreeRemoval.h"

#include <cerrno>
#include <utility>

namespace lumenary {
namespace {

constexpr mode_t ownerMode = S_IRWXU;

SystemResult<void> failure(int code) { return std::unexpected(SystemError{code}); }

}  // namespace

void TreeRemoval::note(const SystemError& error) {
  if (firstError_.code == 0) {
    firstError_ = error;
  }
}

SystemResult<void> TreeRemoval::remove(const Descriptor& parent, const std::string& name) {
  const auto status = statusAt(kernel_, parent, name.c_str());
  if (!status) {
    return status.error().isMissing() ? SystemResult<void>() : std::unexpected(status.error());
  }
  if (stop_.stop_requested()) {
    return failure(ECANCELED);
  }
  if (status->identity.kind == FileKind::folder) {
    // Not of the item itself: something may be mounted on it.
    const auto place = statusOf(kernel_, parent);
    return place ? removeFolder(parent, name, *place) : std::unexpected(place.error());
  }
  const auto removed = removeFile(kernel_, parent, name.c_str());
  return removed || removed.error().isMissing() ? SystemResult<void>() : removed;
}

void TreeRemoval::openForWriting(const Descriptor& parent, const std::string& name) {
  const auto folder = openAt(kernel_, parent, name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW);
  const auto status = folder ? statusOf(kernel_, *folder) : std::unexpected(folder.error());
  if (status && status->owner == userID_ && (status->mode & ownerMode) != ownerMode) {
    static_cast<void>(kernel_.chmodOpened(folder->number(), (status->mode & 07777U) | ownerMode));
  }
}

/// A folder of the file system and mount of `top`, ready to be read and changed.
SystemResult<Descriptor> TreeRemoval::open(const Descriptor& parent, const std::string& name, const KernelStatus& top) {
  const auto place = openAt(kernel_, parent, name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW);
  if (!place) {
    return std::unexpected(place.error());
  }
  const auto status = statusOf(kernel_, *place);
  if (!status) {
    return std::unexpected(status.error());
  }
  if (status->identity.device != top.identity.device || status->mountID != top.mountID) {
    return std::unexpected(SystemError{EBUSY});
  }
  if (status->owner == userID_ && (status->mode & ownerMode) != ownerMode) {
    static_cast<void>(kernel_.chmodOpened(place->number(), (status->mode & 07777U) | ownerMode));
  }
  return openAt(kernel_, *place, ".", O_RDONLY | O_DIRECTORY);
}

/// Removes what is no folder, and notes the folders.
SystemResult<void> TreeRemoval::removeFiles(const Descriptor& folder, Level& level) {
  for (;;) {
    const auto entries = reader_.nextEntries(folder, scratch_);
    if (!entries) {
      return std::unexpected(entries.error());
    }
    if (entries->empty()) {
      return {};
    }
    for (const FolderEntry& entry : *entries) {
      if (stop_.stop_requested()) {
        return failure(ECANCELED);
      }
      if (entry.kind == FileKind::folder) {
        level.subfolders.emplace_back(entry.name);
      } else if (const auto removed = removeFile(kernel_, folder, entry.name);
                 !removed && !removed.error().isMissing()) {
        note(removed.error());
        level.isClean = false;
      }
    }
  }
}

/// The folder around an open one; somebody may have moved the open one away.
SystemResult<Descriptor> TreeRemoval::leave(const Descriptor& folder, const Level& around) {
  auto parent = openAt(kernel_, folder, "..", O_RDONLY | O_DIRECTORY);
  if (!parent) {
    return parent;
  }
  const auto status = statusOf(kernel_, *parent);
  if (!status || status->identity != around.identity) {
    return std::unexpected(status ? SystemError{EBUSY} : status.error());
  }
  return parent;
}

SystemResult<void> TreeRemoval::removeFolder(const Descriptor& parent, const std::string& name,
                                             const KernelStatus& top) {
  firstError_ = {};
  std::vector<Level> levels;
  Descriptor current;  // the folder of the last level
  const auto enter = [&](const Descriptor& around, std::string entered) -> bool {
    auto folder = open(around, entered, top);
    const auto status = folder ? statusOf(kernel_, *folder) : std::unexpected(folder.error());
    if (!status) {
      note(status.error());
      return false;
    }
    Level& level =
        levels.emplace_back(Level{.name = std::move(entered), .identity = status->identity, .subfolders = {}});
    current = *std::move(folder);
    if (const auto removed = removeFiles(current, level); !removed) {
      note(removed.error());
      level.isClean = false;
    }
    return true;
  };
  if (!enter(parent, name)) {
    return std::unexpected(firstError_);
  }
  while (!levels.empty()) {
    Level& level = levels.back();
    if (stop_.stop_requested()) {
      return failure(ECANCELED);
    }
    if (!level.subfolders.empty()) {
      std::string next = std::move(level.subfolders.back());
      level.subfolders.pop_back();
      if (!enter(current, std::move(next))) {
        levels.back().isClean = false;
      }
      continue;
    }
    const Level done = std::move(level);
    levels.pop_back();
    auto around = levels.empty() ? SystemResult<Descriptor>(Descriptor()) : leave(current, levels.back());
    if (!around) {
      note(around.error());
      break;
    }
    current = *std::move(around);
    const Descriptor& holder = levels.empty() ? parent : current;
    const bool isRemoved = done.isClean && kernel_.unlinkat(holder.number(), done.name.c_str(), AT_REMOVEDIR) == 0;
    if (!isRemoved) {
      if (done.isClean) {
        note(lastError());
      }
      if (!levels.empty()) {
        levels.back().isClean = false;
      }
    }
  }
  return firstError_.code == 0 ? SystemResult<void>() : std::unexpected(firstError_);
}

}  // namespace lumenary
