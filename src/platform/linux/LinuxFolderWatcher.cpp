#include "platform/linux/LinuxFolderWatcher.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <utility>

#include "base/Path.h"

namespace lumenary {
namespace {

constexpr std::uint32_t comings = IN_CREATE | IN_MOVED_TO;
constexpr std::uint32_t goings = IN_DELETE | IN_MOVED_FROM;
constexpr std::uint32_t endings = IN_DELETE_SELF | IN_MOVE_SELF | IN_UNMOUNT | IN_IGNORED;
constexpr std::size_t bufferBytes = 16 * 1024;
/// A flood must not keep the reader for ever; what is left is read the next time.
constexpr int readLimit = 256;
constexpr int lookLimit = 8;

}  // namespace

void LinuxFolderWatcher::watch(std::vector<std::string> folders) {
  // A new queue, so that nothing that was told of the former folders is taken for news.
  queue_ = Descriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
  places_.clear();
  for (std::string& folder : folders) {
    places_.push_back({.path = standardised(std::move(folder)), .watched = {}});
    place(places_.back());
  }
}

std::optional<int> LinuxFolderWatcher::addWatch(std::string_view path) {
  const int number = ::inotify_add_watch(queue_.number(), std::string(path).c_str(),
                                         comings | goings | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR);
  return number < 0 ? std::nullopt : std::optional(number);
}

/// Finds the folder, or the nearest one above it.
void LinuxFolderWatcher::place(Place& place) {
  place.isThere = false;
  for (int look = 0; look < lookLimit; ++look) {
    std::string_view path = place.path;
    place.watched = addWatch(path);
    if (place.watched) {
      place.isThere = true;
      return;
    }
    std::string_view below = path;
    while (!place.watched && (errno == ENOENT || errno == ENOTDIR) && path != "/") {
      below = path;
      path = parentPath(path);
      place.watched = addWatch(path);
    }
    // What came to be before its folder was watched is told by no event.
    if (!place.watched || ::access(std::string(below).c_str(), F_OK) != 0) {
      return;
    }
  }
}

std::set<int> LinuxFolderWatcher::numbers() const {
  std::set<int> all;
  for (const Place& place : places_) {
    if (place.watched) {
      all.insert(*place.watched);
    }
  }
  return all;
}

void LinuxFolderWatcher::removeUnused(const std::set<int>& former) {
  const std::set<int> used = numbers();
  for (const int number : former) {
    if (!used.contains(number)) {
      ::inotify_rm_watch(queue_.number(), number);
    }
  }
}

void LinuxFolderWatcher::note(int number, std::uint32_t mask, Change& change) const {
  if ((mask & IN_Q_OVERFLOW) != 0) {
    // Any of them may be another folder by now.
    change = {.isInFolder = true, .lost = numbers(), .needsLook = true};
    return;
  }
  for (const Place& place : places_) {
    if (place.watched != number) {
      continue;
    }
    if ((mask & endings) != 0) {
      change.lost.insert(number);
    }
    change.isInFolder = change.isInFolder || place.isThere;
    change.needsLook = change.needsLook || (mask & endings) != 0 || (!place.isThere && (mask & comings) != 0);
  }
}

/// Looks again for what is gone or wasn't there. True where one of those stands in its place now.
bool LinuxFolderWatcher::findMissing(const std::set<int>& lost) {
  const std::set<int> former = numbers();
  for (const int number : lost) {
    // The kernel keeps watching a folder that was moved away.
    ::inotify_rm_watch(queue_.number(), number);
  }
  bool hasCome = false;
  for (Place& each : places_) {
    const bool isLost = each.watched && lost.contains(*each.watched);
    if (!each.isThere || isLost) {
      place(each);
      hasCome = hasCome || each.isThere;
    }
  }
  removeUnused(former);
  return hasCome;
}

bool LinuxFolderWatcher::read() {
  Change change;
  alignas(inotify_event) std::array<char, bufferBytes> buffer{};
  for (int reads = 0; queue_ && reads < readLimit; ++reads) {
    const ssize_t count = ::read(queue_.number(), buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count <= 0) {
      break;
    }
    const auto length = static_cast<std::size_t>(count);
    for (std::size_t at = 0; at + sizeof(inotify_event) <= length;) {
      inotify_event event{};
      std::memcpy(&event, buffer.data() + at, sizeof(event));
      note(event.wd, event.mask, change);
      at += sizeof(event) + event.len;
    }
  }
  const bool hasCome = change.needsLook && findMissing(change.lost);
  return change.isInFolder || hasCome;
}

}  // namespace lumenary
