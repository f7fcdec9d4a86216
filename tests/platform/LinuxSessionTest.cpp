#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <string>
#include <vector>

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

/// What only a client that changes something needs.
void* xcbFunction(const char* name) { return ::dlsym(::dlopen("libxcb.so.1", RTLD_NOW), name); }

xcb_atom_t atom(const XcbLibrary& xcb, xcb_connection_t* client, const std::string& name) {
  auto* const reply = xcb.internAtomReply(
      client, xcb.internAtom(client, 0, static_cast<std::uint16_t>(name.size()), name.c_str()), nullptr);
  const xcb_atom_t made = reply->atom;
  ::free(reply);
  return made;
}

/// An X server of the test's own.
class Server {
 public:
  Server() {
    std::array<int, 2> told{};
    if (::pipe(told.data()) != 0) {
      return;
    }
    process_ = ::fork();
    if (process_ == 0) {
      const int quiet = ::open("/dev/null", O_WRONLY);
      ::dup2(quiet, STDERR_FILENO);
      const std::string number = std::to_string(told[1]);
      ::execlp("Xvfb", "Xvfb", "-displayfd", number.c_str(), "-noreset", "-nolisten", "tcp", "-screen", "0",
               "320x200x24", nullptr);
      ::_exit(127);
    }
    ::close(told[1]);
    std::string number;
    for (char byte = 0; ::read(told[0], &byte, 1) == 1 && byte != '\n';) {
      number += byte;
    }
    ::close(told[0]);
    if (!number.empty()) {
      display = ":" + number;
    }
  }
  ~Server() { stop(); }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  void stop() {
    if (process_ > 0) {
      ::kill(process_, SIGTERM);
      ::waitpid(process_, nullptr, 0);
      process_ = -1;
    }
  }

  std::string display;

 private:
  pid_t process_ = -1;
};

TEST(LinuxSession, SeesWhetherTheFrontWindowFillsTheScreen) {
  Server server;
  ASSERT_FALSE(server.display.empty()) << "Xvfb doesn't start";
  const LinuxSession session(server.display, "");
  EXPECT_FALSE(session.isFullScreenAppInFront()) << "no window at all";

  const XcbLibrary& xcb = *XcbLibrary::opened();
  xcb_connection_t* const client = xcb.connect(server.display.c_str(), nullptr);
  ASSERT_EQ(xcb.hasError(client), 0);
  const auto change = [&](xcb_window_t window, const char* property, xcb_atom_t type, std::uint8_t format,
                          std::vector<std::uint32_t> values) {
    static const auto changeProperty =
        reinterpret_cast<decltype(&xcb_change_property_checked)>(xcbFunction("xcb_change_property_checked"));
    static const auto requestCheck = reinterpret_cast<decltype(&xcb_request_check)>(xcbFunction("xcb_request_check"));
    const auto count = static_cast<std::uint32_t>(format == 32 ? values.size() : 4 * values.size());
    requestCheck(client, changeProperty(client, XCB_PROP_MODE_REPLACE, window, atom(xcb, client, property), type,
                                        format, count, values.data()));
  };
  const xcb_window_t root = xcb.roots(xcb.setup(client)).data->root;
  const xcb_atom_t full = atom(xcb, client, "_NET_WM_STATE_FULLSCREEN");
  const xcb_atom_t above = atom(xcb, client, "_NET_WM_STATE_ABOVE");
  // The root window itself stands in for an app's: only its properties are looked at.
  change(root, "_NET_ACTIVE_WINDOW", XCB_ATOM_WINDOW, 32, {root});
  EXPECT_FALSE(session.isFullScreenAppInFront()) << "no state";
  change(root, "_NET_WM_STATE", XCB_ATOM_ATOM, 32, {above});
  EXPECT_FALSE(session.isFullScreenAppInFront());
  change(root, "_NET_WM_STATE", XCB_ATOM_ATOM, 32, {above, full});
  EXPECT_TRUE(session.isFullScreenAppInFront());
  change(root, "_NET_WM_STATE", XCB_ATOM_ATOM, 8, {full});
  EXPECT_FALSE(session.isFullScreenAppInFront()) << "not numbers of 32 bits";
  change(root, "_NET_WM_STATE", XCB_ATOM_ATOM, 32, {full});
  change(root, "_NET_ACTIVE_WINDOW", XCB_ATOM_WINDOW, 32, {0x7FFFFFF});
  EXPECT_FALSE(session.isFullScreenAppInFront()) << "a window that is gone";
  xcb.disconnect(client);
  server.stop();
  EXPECT_FALSE(session.isFullScreenAppInFront()) << "a display that is gone";
  EXPECT_FALSE(LinuxSession("", "").isFullScreenAppInFront());
}

}  // namespace
}  // namespace lumenary
