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
  watcher_.watch(std::move(folders));
  if (!isWatching_ && watcher_.events()) {
    isWatching_ = true;
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
