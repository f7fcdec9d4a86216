#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/Descriptor.h"
#include "platform/linux/LinuxSocketReader.h"
#include "support/ChildProcess.h"

namespace lumenary {
namespace {

/// A socket bound to a port that the kernel chooses.
struct Bound {
  Descriptor socket;
  std::uint16_t port = 0;
};

Bound bound(int family, int type, const char* address, bool listens = true) {
  Bound made{.socket = Descriptor(::socket(family, type | SOCK_CLOEXEC, 0))};
  sockaddr_storage place{};
  place.ss_family = static_cast<sa_family_t>(family);
  auto* const four = reinterpret_cast<sockaddr_in*>(&place);
  auto* const six = reinterpret_cast<sockaddr_in6*>(&place);
  ::inet_pton(family, address, family == AF_INET ? static_cast<void*>(&four->sin_addr) : &six->sin6_addr);
  socklen_t length = family == AF_INET ? sizeof *four : sizeof *six;
  if (::bind(made.socket.number(), reinterpret_cast<sockaddr*>(&place), length) != 0 ||
      (type == SOCK_STREAM && listens && ::listen(made.socket.number(), 1) != 0)) {
    return {};
  }
  ::getsockname(made.socket.number(), reinterpret_cast<sockaddr*>(&place), &length);
  made.port = ntohs(family == AF_INET ? four->sin_port : six->sin6_port);
  return made;
}

std::vector<ListeningSocket> at(std::uint16_t port, const std::vector<ListeningSocket>& sockets) {
  std::vector<ListeningSocket> found;
  std::ranges::copy_if(sockets, std::back_inserter(found), [&](const auto& socket) { return socket.port == port; });
  return found;
}

TEST(LinuxSocketReader, FindsWhatListens) {
  struct Case {
    int family;
    int type;
    const char* address;
  };
  const LinuxSocketReader reader;
  for (const Case& one : std::vector<Case>{{AF_INET, SOCK_STREAM, "127.0.0.1"},
                                           {AF_INET, SOCK_STREAM, "0.0.0.0"},
                                           {AF_INET6, SOCK_STREAM, "::1"},
                                           {AF_INET6, SOCK_STREAM, "::"},
                                           {AF_INET, SOCK_DGRAM, "127.0.0.1"},
                                           {AF_INET, SOCK_DGRAM, "0.0.0.0"},
                                           {AF_INET6, SOCK_DGRAM, "::1"},
                                           {AF_INET6, SOCK_DGRAM, "::"}}) {
    const Bound made = bound(one.family, one.type, one.address);
    if (made.port == 0 && one.family == AF_INET6) {
      continue;  // a machine without IPv6
    }
    const auto found = at(made.port, reader.listening());
    ASSERT_EQ(found.size(), 1U) << one.address;
    const auto protocol = one.type == SOCK_STREAM ? SocketProtocol::tcp : SocketProtocol::udp;
    EXPECT_EQ(found.front(), (ListeningSocket{protocol, one.address, made.port, ::geteuid(), found.front().number}));
    const SocketHolder own{.pid = ::getpid(), .number = found.front().number, .descriptor = made.socket.number()};
    EXPECT_EQ(reader.holders(found), std::vector<SocketHolder>{own});
    EXPECT_TRUE(reader.areStillHeld(std::vector<SocketHolder>{own}));
    SocketHolder other = own;
    ++other.number;
    EXPECT_FALSE(reader.areStillHeld(std::vector<SocketHolder>{own, other}));
    const ChildProcess heir({[] {}});
    EXPECT_EQ(reader.holders(found).size(), 2U) << "a child has it as well";
  }
}

TEST(LinuxSocketReader, PassesOverWhatDoesNotListen) {
  const LinuxSocketReader reader;
  const Bound silent = bound(AF_INET, SOCK_STREAM, "127.0.0.1", false);
  const Bound tied = bound(AF_INET, SOCK_DGRAM, "127.0.0.1");
  sockaddr_in peer{};
  peer.sin_family = AF_INET;
  peer.sin_port = htons(9);
  peer.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  ASSERT_EQ(::connect(tied.socket.number(), reinterpret_cast<sockaddr*>(&peer), sizeof peer), 0);
  const auto sockets = reader.listening();
  EXPECT_TRUE(at(silent.port, sockets).empty());
  EXPECT_TRUE(at(tied.port, sockets).empty());
  EXPECT_TRUE(reader.holders({}).empty());
}

TEST(LinuxSocketReader, FindsThousandsAndAgreesWithTheKernelsTables) {
  std::vector<Bound> many;
  for (int count = 0; count < 400; ++count) {
    many.push_back(bound(AF_INET, SOCK_STREAM, "127.0.0.1"));
    many.push_back(bound(AF_INET, SOCK_DGRAM, "127.0.0.1"));
  }
  const LinuxSocketReader reader;
  const auto sockets = reader.listening();
  for (const Bound& made : many) {
    EXPECT_FALSE(at(made.port, sockets).empty());
  }
  EXPECT_GE(reader.holders(sockets).size(), many.size());
}

TEST(LinuxSocketReader, ReadsTheKernelsTables) {
  const std::string head = "  sl  local_address rem_address   st tx_queue rx_queue tr tm->when retrnsmt   uid\n";
  EXPECT_EQ(parseSocketTable(head + "   0: 0100007F:0BB8 00000000:0000 0A 00000000:00000000 00:00000000 00000000  1000 "
                                    "       0 4242 1 0000000000000000 100 0 0 10 0\n"
                                    "   1: 0100007F:0BB9 0100007F:0050 01 00000000:00000000 00:00000000 00000000  1000 "
                                    "       0 4243 1\n"
                                    "   2: 0100007F:0000 00000000:0000 0A 0:0 0:0 0 0 0 5 1\n"
                                    "   3: broken\n",
                             SocketProtocol::tcp, false),
            (std::vector<ListeningSocket>{{SocketProtocol::tcp, "127.0.0.1", 3000, 1000, 4242}}));
  EXPECT_EQ(
      parseSocketTable(head + "  10: 00000000000000000000000001000000:14E9 00000000000000000000000000000000:0000 07 "
                              "00000000:00000000 00:00000000 00000000     0        0 99 2 0 0\n",
                       SocketProtocol::udp, true),
      (std::vector<ListeningSocket>{{SocketProtocol::udp, "::1", 5353, 0, 99}}));
  EXPECT_TRUE(parseSocketTable("", SocketProtocol::tcp, false).empty());
}

}  // namespace
}  // namespace lumenary
