#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/Descriptor.h"
#include "platform/linux/LinuxSession.h"
#include "platform/linux/XcbLibrary.h"
#include "support/TemporaryHome.h"

namespace lumenary {
namespace {

TEST(LinuxSession, HearsADeviceThatRecords) {
  const std::vector<std::pair<std::string, bool>> cases = {
      {"card0/pcm0c/sub0/status", true},  {"card2/pcm10c/sub3/status", true},
      {"card0/pcm0p/sub0/status", false},  // plays
      {"other/pcm0c/sub0/status", false}, {"card0/pcm0c/status", false},
  };
  for (const auto& [path, isRecording] : cases) {
    TemporaryHome sound;
    sound.write("card1/pcm0c/sub0/status", "closed\n");
    sound.write(path, "state: RUNNING\nowner_pid   : 12\n");
    EXPECT_EQ(LinuxSession("", sound.root()).isMicrophoneInUse(), isRecording) << path;
    sound.write(path, "state: SETUP\n");
    EXPECT_FALSE(LinuxSession("", sound.root()).isMicrophoneInUse()) << path;
  }
  EXPECT_FALSE(LinuxSession("", "/nowhere").isMicrophoneInUse());
}

/// An X server of the test's own, with two screens.
class Server {
 public:
  Server() {
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
  ~Server() { stop(); }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

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
class Client {
 public:
  explicit Client(const std::string& display) : connection_(xcb_.connect(display.c_str(), &number_)) {
    auto screens = xcb_.roots(xcb_.setup(connection_));
    for (; number_ > 0; --number_) {
      xcb_.nextScreen(&screens);
    }
    screen_ = screens.data;
  }
  ~Client() { xcb_.disconnect(connection_); }
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

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

constexpr auto longPatience = std::chrono::minutes(1);

TEST(LinuxSession, SeesWhetherTheFrontWindowFillsTheScreen) {
  const Server server;
  ASSERT_FALSE(server.display.empty()) << "Xvfb doesn't start";
  const Client client(server.display);
  const auto isFull = [&](const std::string& display) {
    return LinuxSession(display, "", longPatience).isFullScreenAppInFront();
  };
  EXPECT_FALSE(isFull(server.display)) << "no window manager";

  const xcb_atom_t full = client.atom("_NET_WM_STATE_FULLSCREEN");
  const xcb_atom_t above = client.atom("_NET_WM_STATE_ABOVE");
  const xcb_atom_t ofDesktop = client.atom("_NET_WM_WINDOW_TYPE_DESKTOP");
  const xcb_atom_t ofDialog = client.atom("_NET_WM_WINDOW_TYPE_DIALOG");
  using Numbers = std::vector<std::uint32_t>;
  struct Case {
    const char* name;
    bool isFull;
    std::uint16_t width;
    std::uint16_t height;
    Numbers states;
    Numbers types;
    xcb_atom_t typeOfStates = XCB_ATOM_ATOM;
    std::uint8_t formatOfStates = 32;
  };
  const std::vector<Case> cases = {
      {"a plain window", false, 319, 200, {}, {}},
      {"in a state of another kind", false, 100, 100, {above}, {}},
      {"full screen", true, 100, 100, {above, full}, {}},
      {"as large as the screen, without a word", true, 320, 200, {}, {}},
      {"as large as the screen, of a common type", true, 320, 200, {}, {ofDialog}},
      {"the desktop's own", false, 320, 200, {}, {ofDesktop}},
      {"larger than the screen", false, 640, 480, {}, {}},
      {"states of 8 bits", false, 100, 100, {full}, {}, XCB_ATOM_ATOM, 8},
      {"states that are no names", false, 100, 100, {full}, {}, XCB_ATOM_CARDINAL},
  };
  for (const Case& window : cases) {
    const xcb_window_t made = client.makeWindow(window.width, window.height);
    client.set(made, "_NET_WM_STATE", window.typeOfStates, window.states, window.formatOfStates);
    client.set(made, "_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM, window.types);
    client.activate(made);
    EXPECT_EQ(isFull(server.display), window.isFull) << window.name;
  }
  for (const Numbers& active : {Numbers{}, Numbers{0}, Numbers{0x7FFFFFF}}) {
    client.set(client.root(), "_NET_ACTIVE_WINDOW", XCB_ATOM_WINDOW, active);
    EXPECT_FALSE(isFull(server.display)) << "none in front, or one that is gone";
  }

  const Client other(server.display + ".1");
  other.activate(other.makeWindow(640, 480));
  EXPECT_TRUE(isFull(server.display + ".1")) << "the second screen";
  EXPECT_FALSE(isFull(server.display));
  EXPECT_FALSE(isFull(server.display + ".2")) << "a screen that the server doesn't have";
}

TEST(LinuxSession, TakesNoAnswerForNo) {
  Server server;
  ASSERT_FALSE(server.display.empty()) << "Xvfb doesn't start";
  const LinuxSession session(server.display, "", longPatience);
  {
    const Client client(server.display);
    client.activate(client.makeWindow(320, 200));
    ASSERT_TRUE(session.isFullScreenAppInFront());

    server.freeze();
    const LinuxSession hurried(server.display, "", std::chrono::milliseconds(20));
    EXPECT_FALSE(hurried.isFullScreenAppInFront());
    EXPECT_FALSE(hurried.isFullScreenAppInFront()) << "while the first question still waits";
    server.goOn();
    // Asks anew as soon as the question left behind has come back.
    while (!hurried.isFullScreenAppInFront()) {
    }
  }
  server.stop();
  EXPECT_FALSE(session.isFullScreenAppInFront()) << "a display that is gone";
  EXPECT_FALSE(LinuxSession("", "").isFullScreenAppInFront()) << "none at all";
}

}  // namespace
}  // namespace lumenary
