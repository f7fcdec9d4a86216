#include "platform/linux/LinuxSession.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string_view>
#include <system_error>
#include <vector>

#include "platform/linux/XcbLibrary.h"

namespace lumenary {
namespace {

namespace fs = std::filesystem;

struct FreeReply {
  void operator()(void* reply) const { std::free(reply); }
};

/// One connection to an X server, for a few questions.
class Display {
 public:
  Display(const XcbLibrary& xcb, const std::string& name)
      : xcb_(xcb), connection_(xcb.connect(name.c_str(), &screen_)) {}
  ~Display() { xcb_.disconnect(connection_); }
  Display(const Display&) = delete;
  Display& operator=(const Display&) = delete;

  bool isConnected() const { return xcb_.hasError(connection_) == 0; }

  /// 0 where there is none.
  xcb_window_t root() const {
    auto roots = xcb_.roots(xcb_.setup(connection_));
    for (int index = 0; index < screen_ && roots.rem > 0; ++index) {
      ++roots.data;
      --roots.rem;
    }
    return roots.rem > 0 ? roots.data->root : 0;
  }

  /// 0 for a name that no client has used.
  xcb_atom_t atom(std::string_view name) const {
    const auto request = xcb_.internAtom(connection_, 1, static_cast<std::uint16_t>(name.size()), name.data());
    const std::unique_ptr<xcb_intern_atom_reply_t, FreeReply> reply(
        xcb_.internAtomReply(connection_, request, nullptr));
    return reply == nullptr ? 0 : reply->atom;
  }

  /// A property of 32-bit numbers; empty for any other, and for a window that is gone.
  std::vector<std::uint32_t> numbers(xcb_window_t window, std::string_view name, xcb_atom_t type) const {
    constexpr std::uint32_t most = 64;
    const auto request = xcb_.getProperty(connection_, 0, window, atom(name), type, 0, most);
    const std::unique_ptr<xcb_get_property_reply_t, FreeReply> reply(
        xcb_.getPropertyReply(connection_, request, nullptr));
    if (reply == nullptr || reply->format != 32 || reply->type != type) {
      return {};
    }
    std::vector<std::uint32_t> numbers(static_cast<std::size_t>(xcb_.propertyLength(reply.get())) / 4);
    if (!numbers.empty()) {
      std::memcpy(numbers.data(), xcb_.propertyValue(reply.get()), numbers.size() * 4);
    }
    return numbers;
  }

 private:
  const XcbLibrary& xcb_;
  int screen_ = 0;
  xcb_connection_t* connection_;
};

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
  const XcbLibrary* const xcb = display_.empty() ? nullptr : XcbLibrary::opened();
  if (xcb == nullptr) {
    return false;
  }
  const Display display(*xcb, display_);
  if (!display.isConnected()) {
    return false;
  }
  const auto active = display.numbers(display.root(), "_NET_ACTIVE_WINDOW", XCB_ATOM_WINDOW);
  if (active.empty() || active.front() == 0) {
    return false;
  }
  const auto states = display.numbers(active.front(), "_NET_WM_STATE", XCB_ATOM_ATOM);
  const xcb_atom_t fullScreen = display.atom("_NET_WM_STATE_FULLSCREEN");
  return fullScreen != 0 && std::ranges::find(states, fullScreen) != states.end();
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
