#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "platform/SocketReader.h"

namespace lumenary {

/// Asks the kernel for its sockets (NETLINK_SOCK_DIAG), and where it doesn't answer reads the tables below /proc/net.
/// Who holds them is told by the open files of all processes.
class LinuxSocketReader final : public SocketReader {
 public:
  std::vector<ListeningSocket> listening() const override;
  std::vector<SocketHolder> holders(std::span<const ListeningSocket> sockets) const override;
  bool areStillHeld(std::span<const SocketHolder> holders) const override;
};

/// The lines of /proc/net/{tcp,tcp6,udp,udp6}.
std::vector<ListeningSocket> parseSocketTable(std::string_view table, SocketProtocol protocol, bool isIPv6);

}  // namespace lumenary
