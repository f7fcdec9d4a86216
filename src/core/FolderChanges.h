#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/Executor.h"
#include "platform/FolderWatcher.h"

namespace lumenary {

/// Calls once after changes in some folders, when they have been quiet for a while. Owner's thread only.
class FolderChanges {
 public:
  /// Both must outlive the value.
  FolderChanges(Executor& owner, FolderWatcher& watcher, Executor::Duration quietTime, std::function<void()> onQuiet)
      : owner_(owner), watcher_(watcher), quietTime_(quietTime), onQuiet_(std::move(onQuiet)) {}
  ~FolderChanges();
  FolderChanges(const FolderChanges&) = delete;
  FolderChanges& operator=(const FolderChanges&) = delete;

  /// In place of the former folders.
  void watch(std::vector<std::string> folders);

 private:
  void onReadable();

  Executor& owner_;
  FolderWatcher& watcher_;
  Executor::Duration quietTime_;
  std::function<void()> onQuiet_;
  std::optional<Executor::TimerID> timer_;
  bool isWatching_ = false;
};

}  // namespace lumenary
