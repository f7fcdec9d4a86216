#include "platform/linux/X11FrontWindow.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/linux/XcbLibrary.h"

namespace lumenary {
namespace {

struct FreeReply {
  void operator()(void* reply) const { std::free(reply); }
};
template <class Reply>
using Answer = std::unique_ptr<Reply, FreeReply>;

/// One connection to an X server, for a few questions. A window that vanishes meanwhile has no answers.
class Display {
 public:
  Display(const XcbLibrary& xcb, const std::string& name)
      : xcb_(xcb), connection_(xcb.connect(name.c_str(), &screen_)) {}
  ~Display() { xcb_.disconnect(connection_); }
  Display(const Display&) = delete;
  Display& operator=(const Display&) = delete;

  /// Null without a connection, and for a screen that the server doesn't have.
  const xcb_screen_t* screen() const {
    if (xcb_.hasError(connection_) != 0) {
      return nullptr;
    }
    auto screens = xcb_.roots(xcb_.setup(connection_));
    for (int index = 0; index < screen_ && screens.rem > 0; ++index) {
      xcb_.nextScreen(&screens);
    }
    return screens.rem > 0 ? screens.data : nullptr;
  }

  /// 0 for a name that no client has used.
  xcb_atom_t atom(std::string_view name) const {
    const auto request = xcb_.internAtom(connection_, 1, static_cast<std::uint16_t>(name.size()), name.data());
    const Answer<xcb_intern_atom_reply_t> reply(xcb_.internAtomReply(connection_, request, nullptr));
    return reply == nullptr ? 0 : reply->atom;
  }

  /// A property of 32-bit numbers, as far as it is of a usual length; empty for any other.
  std::vector<std::uint32_t> numbers(xcb_window_t window, std::string_view name, xcb_atom_t type) const {
    constexpr std::uint32_t most = 64;
    const auto request = xcb_.getProperty(connection_, 0, window, atom(name), type, 0, most);
    const Answer<xcb_get_property_reply_t> reply(xcb_.getPropertyReply(connection_, request, nullptr));
    if (reply == nullptr || reply->format != 32 || reply->type != type || reply->value_len > reply->length) {
      return {};
    }
    std::vector<std::uint32_t> numbers(reply->value_len);
    if (!numbers.empty()) {
      std::memcpy(numbers.data(), xcb_.propertyValue(reply.get()), numbers.size() * sizeof numbers[0]);
    }
    return numbers;
  }

  /// True where the property is a list of names and one of them is this.
  bool holds(xcb_window_t window, std::string_view property, std::string_view name) const {
    const xcb_atom_t wanted = atom(name);
    const auto names = numbers(window, property, XCB_ATOM_ATOM);
    return wanted != 0 && std::ranges::find(names, wanted) != names.end();
  }

  bool isAsLargeAs(const xcb_screen_t& screen, xcb_window_t window) const {
    const Answer<xcb_get_geometry_reply_t> size(
        xcb_.getGeometryReply(connection_, xcb_.getGeometry(connection_, window), nullptr));
    return size != nullptr && size->width == screen.width_in_pixels && size->height == screen.height_in_pixels;
  }

 private:
  const XcbLibrary& xcb_;
  int screen_ = 0;
  xcb_connection_t* connection_;
};

}  // namespace

bool isFrontWindowFullScreen(const std::string& display) {
  const XcbLibrary* const xcb = XcbLibrary::opened();
  if (xcb == nullptr) {
    return false;
  }
  const Display server(*xcb, display);
  const xcb_screen_t* const screen = server.screen();
  if (screen == nullptr) {
    return false;
  }
  const auto active = server.numbers(screen->root, "_NET_ACTIVE_WINDOW", XCB_ATOM_WINDOW);
  if (active.empty() || active.front() == 0) {
    return false;
  }
  const xcb_window_t window = active.front();
  // Many a game only has the size. So has the window with the icons of a desktop, which a click on it makes active.
  return server.holds(window, "_NET_WM_STATE", "_NET_WM_STATE_FULLSCREEN") ||
         (server.isAsLargeAs(*screen, window) &&
          !server.holds(window, "_NET_WM_WINDOW_TYPE", "_NET_WM_WINDOW_TYPE_DESKTOP"));
}

}  // namespace lumenary
