#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/linux/LinuxSession.h"
#include "support/TemporaryHome.h"
#include "support/XServer.h"

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

constexpr auto longPatience = std::chrono::minutes(1);

TEST(LinuxSession, SeesWhetherTheFrontWindowFillsTheScreen) {
  const XServer server;
  ASSERT_FALSE(server.display.empty()) << "Xvfb doesn't start";
  const XClient client(server.display);
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

  const XClient other(server.display + ".1");
  other.activate(other.makeWindow(640, 480));
  EXPECT_TRUE(isFull(server.display + ".1")) << "the second screen";
  EXPECT_FALSE(isFull(server.display));
  EXPECT_FALSE(isFull(server.display + ".2")) << "a screen that the server doesn't have";
}

TEST(LinuxSession, TakesNoAnswerForNo) {
  XServer server;
  ASSERT_FALSE(server.display.empty()) << "Xvfb doesn't start";
  const LinuxSession session(server.display, "", longPatience);
  {
    const XClient client(server.display);
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
