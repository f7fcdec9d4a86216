#include "core/FolderChanges.h"

#include <utility>

namespace lumenary {

FolderChanges::~FolderChanges() {
  if (isWatching_) {
    owner_.stopWatching(watcher_.events());
  }
  if (timer_) {
    owner_.cancelTimer(*timer_);
  }
}

void FolderChanges::watch(std::vector<std::string> folders) {
  // The watcher may answer from another descriptor afterwards.
  if (isWatching_) {
    owner_.stopWatching(watcher_.events());
  }
  watcher_.watch(std::move(folders));
  isWatching_ = static_cast<bool>(watcher_.events());
  if (isWatching_) {
    owner_.watch(watcher_.events(), [this] { onReadable(); });
  }
}

void FolderChanges::onReadable() {
  if (!watcher_.read()) {
    return;
  }
  if (timer_) {
    owner_.cancelTimer(*timer_);
  }
  timer_ = owner_.callAfter(quietTime_, [this] {
    timer_.reset();
    onQuiet_();
  });
}

}  // namespace lumenary
