#include "platform/linux/X11Windows.h"

#include <unistd.h>

#include <algorithm>
#include <array>
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

  /// 0 where there is none.
  xcb_window_t activeWindow(const xcb_screen_t& screen) const {
    const auto active = numbers(screen.root, "_NET_ACTIVE_WINDOW", XCB_ATOM_WINDOW);
    return active.empty() ? 0 : active.front();
  }

  /// 0 for a name that no client has used.
  xcb_atom_t atom(std::string_view name) const {
    const auto request = xcb_.internAtom(connection_, 1, static_cast<std::uint16_t>(name.size()), name.data());
    const Answer<xcb_intern_atom_reply_t> reply(xcb_.internAtomReply(connection_, request, nullptr));
    return reply == nullptr ? 0 : reply->atom;
  }

  /// A property of 32-bit numbers, as far as it is of a usual length; empty for any other.
  std::vector<std::uint32_t> numbers(xcb_window_t window, std::string_view name, xcb_atom_t type) const {
    const Answer<xcb_get_property_reply_t> reply = property(window, name, type);
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

  /// A property of bytes, as far as it is of a usual length; empty for any other.
  std::string text(xcb_window_t window, std::string_view name) const {
    const Answer<xcb_get_property_reply_t> reply = property(window, name, XCB_ATOM_STRING);
    if (reply == nullptr || reply->format != 8 || reply->value_len > std::uint64_t{reply->length} * 4) {
      return {};
    }
    return {static_cast<const char*>(xcb_.propertyValue(reply.get())), reply->value_len};
  }

  std::optional<std::int32_t> processOf(xcb_window_t window) const {
    const auto pid = numbers(window, "_NET_WM_PID", XCB_ATOM_CARDINAL);
    const bool isOne = pid.size() == 1 && pid.front() > 0 && pid.front() <= INT32_MAX;
    return isOne ? std::optional(static_cast<std::int32_t>(pid.front())) : std::nullopt;
  }

  /// Asks the window manager to close a window; `message` is the atom of that request.
  void close(const xcb_screen_t& screen, xcb_window_t window, xcb_atom_t message) const {
    constexpr std::uint32_t asAPersonWould = 2;
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = message;
    event.data.data32[1] = asAPersonWould;
    xcb_.sendEvent(connection_, 0, screen.root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&event));
  }

  /// Returns once the server has done what it was asked. Of a client that leaves at once it may not read the rest.
  void waitUntilDone() const { atom("_NET_WM_PID"); }

  bool isAsLargeAs(const xcb_screen_t& screen, xcb_window_t window) const {
    const Answer<xcb_get_geometry_reply_t> size(
        xcb_.getGeometryReply(connection_, xcb_.getGeometry(connection_, window), nullptr));
    return size != nullptr && size->width == screen.width_in_pixels && size->height == screen.height_in_pixels;
  }

 private:
  Answer<xcb_get_property_reply_t> property(xcb_window_t window, std::string_view name, xcb_atom_t type) const {
    constexpr std::uint32_t most = 1024;  // words: a list of all windows has one for each
    const auto request = xcb_.getProperty(connection_, 0, window, atom(name), type, 0, most);
    return Answer<xcb_get_property_reply_t>(xcb_.getPropertyReply(connection_, request, nullptr));
  }

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
  const xcb_window_t window = screen == nullptr ? 0 : server.activeWindow(*screen);
  // Many a game only has the size. So has the window with the icons of a desktop, which a click on it makes active.
  return window != 0 && (server.holds(window, "_NET_WM_STATE", "_NET_WM_STATE_FULLSCREEN") ||
                         (server.isAsLargeAs(*screen, window) &&
                          !server.holds(window, "_NET_WM_WINDOW_TYPE", "_NET_WM_WINDOW_TYPE_DESKTOP")));
}

std::optional<std::int32_t> frontWindowProcess(const std::string& display) {
  const XcbLibrary* const xcb = XcbLibrary::opened();
  if (xcb == nullptr) {
    return std::nullopt;
  }
  const Display server(*xcb, display);
  const xcb_screen_t* const screen = server.screen();
  const xcb_window_t window = screen == nullptr ? 0 : server.activeWindow(*screen);
  return window == 0 ? std::nullopt : server.processOf(window);
}

bool closeWindowsOf(const std::string& display, std::int32_t pid) {
  const XcbLibrary* const xcb = XcbLibrary::opened();
  if (xcb == nullptr) {
    return false;
  }
  const Display server(*xcb, display);
  const xcb_screen_t* const screen = server.screen();
  const xcb_atom_t message = server.atom("_NET_CLOSE_WINDOW");
  if (screen == nullptr || message == 0) {
    return false;
  }
  std::array<char, 256> machine{};
  ::gethostname(machine.data(), machine.size() - 1);
  bool isAsked = false;
  for (const xcb_window_t window : server.numbers(screen->root, "_NET_CLIENT_LIST", XCB_ATOM_WINDOW)) {
    if (server.processOf(window) == pid && server.text(window, "WM_CLIENT_MACHINE") == machine.data()) {
      server.close(*screen, window, message);
      isAsked = true;
    }
  }
  server.waitUntilDone();
  return isAsked;
}

}  // namespace lumenary
