#include "platform/linux/LinuxSession.h"

#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>
#include <vector>

#include "platform/linux/X11Windows.h"

namespace lumenary {
namespace {

namespace fs = std::filesystem;

bool isRecording(const fs::path& status) {
  std::ifstream file(status);
  std::string line;
  return std::getline(file, line) && line == "state: RUNNING";
}

/// What stands in a folder under a name that begins and ends so; a folder that can't be read holds nothing.
std::vector<fs::path> entries(const fs::path& folder, std::string_view begin, std::string_view end) {
  std::vector<fs::path> found;
  std::error_code error;
  for (fs::directory_iterator at(folder, error), last; !error && at != last; at.increment(error)) {
    const std::string name = at->path().filename().string();
    if (name.starts_with(begin) && name.ends_with(end)) {
      found.push_back(at->path());
    }
  }
  return found;
}

}  // namespace

bool LinuxSession::isFullScreenAppInFront() const {
  return !display_.empty() &&
         answer_.ask([display = display_] { return isFrontWindowFullScreen(display); }).value_or(false);
}

bool LinuxSession::isMicrophoneInUse() const {
  for (const fs::path& card : entries(soundFolder_, "card", "")) {
    for (const fs::path& device : entries(card, "pcm", "c")) {
      for (const fs::path& stream : entries(device, "sub", "")) {
        if (isRecording(stream / "status")) {
          return true;
        }
      }
    }
  }
  return false;
}

}  // namespace lumenary
