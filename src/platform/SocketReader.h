#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace lumenary {

enum class SocketProtocol : std::uint8_t { tcp, udp };

/// A socket that takes what comes to its port: TCP that listens, UDP that isn't tied to one peer.
struct ListeningSocket {
  SocketProtocol protocol = SocketProtocol::tcp;
  std::string address{};     ///< as text, "0.0.0.0" or "::" for any; empty where it can't be told
  std::uint16_t port = 0;    ///< never 0
  std::uint32_t uid = 0;     ///< whose it is
  std::uint64_t number = 0;  ///< of the socket, unique while it lives

  bool operator==(const ListeningSocket&) const = default;
};

struct SocketHolder {
  std::int32_t pid = 0;
  std::uint64_t number = 0;     ///< ListeningSocket::number
  std::int32_t descriptor = 0;  ///< the first of the process's descriptors that is this socket

  auto operator<=>(const SocketHolder&) const = default;
};

/// The sockets of this network, as far as the person may see them. From any thread.
class SocketReader {
 public:
  virtual ~SocketReader() = default;
  /// By number.
  virtual std::vector<ListeningSocket> listening() const = 0;
  /// Every process that holds one of the sockets, each once, by process and number. Processes whose files may not be
  /// seen hold nothing. Looks at all open files of all processes.
  virtual std::vector<SocketHolder> holders(std::span<const ListeningSocket> sockets) const = 0;
  /// Whether all of them still hold what they held.
  virtual bool areStillHeld(std::span<const SocketHolder> holders) const = 0;
};

}  // namespace lumenary
