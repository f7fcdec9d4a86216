#pragma once

#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "platform/Descriptor.h"
#include "platform/linux/XcbLibrary.h"

namespace lumenary {

/// An X server of the test's own, with two screens.
class XServer {
 public:
  XServer() {
    std::array<int, 2> told{};
    if (::pipe2(told.data(), O_CLOEXEC) != 0) {
      return;
    }
    const std::string answerTo = std::to_string(told[1]);
    process_ = ::fork();
    if (process_ == 0) {
      ::prctl(PR_SET_PDEATHSIG, SIGTERM);
      ::fcntl(told[1], F_SETFD, 0);
      ::dup2(::open("/dev/null", O_WRONLY), STDERR_FILENO);
      ::execlp("Xvfb", "Xvfb", "-displayfd", answerTo.c_str(), "-noreset", "-nolisten", "tcp", "-screen", "0",
               "320x200x24", "-screen", "1", "640x480x24", nullptr);
      ::_exit(127);
    }
    const Descriptor answer(told[0]);
    ::close(told[1]);
    std::string number;
    for (char byte = 0; ::read(answer.number(), &byte, 1) == 1 && byte != '\n';) {
      number += byte;
    }
    display = number.empty() ? "" : ":" + number;
  }
  ~XServer() { stop(); }
  XServer(const XServer&) = delete;
  XServer& operator=(const XServer&) = delete;

  /// It takes connections, as the kernel does that for it, and answers nothing.
  void freeze() const {
    ::kill(process_, SIGSTOP);
    ::waitpid(process_, nullptr, WUNTRACED);
  }
  void goOn() const { ::kill(process_, SIGCONT); }

  void stop() {
    if (process_ > 0) {
      ::kill(process_, SIGTERM);
      goOn();
      ::waitpid(process_, nullptr, 0);
      process_ = -1;
    }
  }

  std::string display;

 private:
  pid_t process_ = -1;
};

/// A client that has windows, and does what a window manager would do. Every change is done when its call returns.
class XClient {
 public:
  explicit XClient(const std::string& display) : connection_(xcb_.connect(display.c_str(), &number_)) {
    auto screens = xcb_.roots(xcb_.setup(connection_));
    for (; number_ > 0; --number_) {
      xcb_.nextScreen(&screens);
    }
    screen_ = screens.data;
  }
  ~XClient() { xcb_.disconnect(connection_); }
  XClient(const XClient&) = delete;
  XClient& operator=(const XClient&) = delete;

  xcb_window_t root() const { return screen_->root; }

  xcb_window_t makeWindow(std::uint16_t width, std::uint16_t height) const {
    const xcb_window_t window = function<decltype(xcb_generate_id)>("xcb_generate_id")(connection_);
    const auto create = function<decltype(xcb_create_window_checked)>("xcb_create_window_checked");
    check(create(connection_, XCB_COPY_FROM_PARENT, window, root(), 0, 0, width, height, 0,
                 XCB_WINDOW_CLASS_INPUT_OUTPUT, screen_->root_visual, 0, nullptr));
    return window;
  }

  xcb_atom_t atom(const std::string& name) const {
    const auto request = xcb_.internAtom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
    auto* const reply = xcb_.internAtomReply(connection_, request, nullptr);
    const xcb_atom_t made = reply->atom;
    std::free(reply);
    return made;
  }

  void set(xcb_window_t window, const char* property, xcb_atom_t type, std::vector<std::uint32_t> values,
           std::uint8_t format = 32) const {
    const auto change = function<decltype(xcb_change_property_checked)>("xcb_change_property_checked");
    const auto count = static_cast<std::uint32_t>(values.size() * 32 / format);
    check(change(connection_, XCB_PROP_MODE_REPLACE, window, atom(property), type, format, count, values.data()));
  }
  void set(xcb_window_t window, const char* property, const std::string& text) const {
    const auto change = function<decltype(xcb_change_property_checked)>("xcb_change_property_checked");
    check(change(connection_, XCB_PROP_MODE_REPLACE, window, atom(property), XCB_ATOM_STRING, 8,
                 static_cast<std::uint32_t>(text.size()), text.data()));
  }
  /// From now on it hears what others ask of the window manager.
  void manageWindows() const {
    const auto change =
        function<decltype(xcb_change_window_attributes_checked)>("xcb_change_window_attributes_checked");
    const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
    check(change(connection_, root(), XCB_CW_EVENT_MASK, &mask));
  }
  /// Waits for the next message to the window manager: the window it is about, and of which kind it is.
  std::pair<xcb_window_t, xcb_atom_t> nextMessage() const {
    const auto wait = function<decltype(xcb_wait_for_event)>("xcb_wait_for_event");
    for (;;) {
      auto* const event = reinterpret_cast<xcb_client_message_event_t*>(wait(connection_));
      const std::pair message =
          event == nullptr ? std::pair<xcb_window_t, xcb_atom_t>() : std::pair(event->window, event->type);
      const bool isMessage = event == nullptr || (event->response_type & 0x7FU) == XCB_CLIENT_MESSAGE;
      std::free(event);
      if (isMessage) {
        return message;
      }
    }
  }
  void activate(xcb_window_t window) const { set(root(), "_NET_ACTIVE_WINDOW", XCB_ATOM_WINDOW, {window}); }

 private:
  /// What only a client that changes something needs.
  template <class Function>
  static Function* function(const char* name) {
    return reinterpret_cast<Function*>(::dlsym(::dlopen("libxcb.so.1", RTLD_NOW), name));
  }

  void check(xcb_void_cookie_t request) const {
    auto* const error = function<decltype(xcb_request_check)>("xcb_request_check")(connection_, request);
    EXPECT_EQ(error, nullptr);
    std::free(error);
  }

  const XcbLibrary& xcb_ = *XcbLibrary::opened();
  int number_ = 0;
  xcb_connection_t* connection_;
  xcb_screen_t* screen_ = nullptr;
};

}  // namespace lumenary
