#include "platform/linux/LinuxSocketReader.h"

#include <arpa/inet.h>
#include <dirent.h>
#include <fcntl.h>
#include <linux/inet_diag.h>
#include <linux/netlink.h>
#include <linux/sock_diag.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "platform/Descriptor.h"
#include "platform/linux/ProcText.h"

namespace lumenary {
namespace {

struct Table {
  SocketProtocol protocol;
  bool isIPv6;
  const char* file;
};

constexpr std::array tables{
    Table{SocketProtocol::tcp, false, "/proc/net/tcp"}, Table{SocketProtocol::tcp, true, "/proc/net/tcp6"},
    Table{SocketProtocol::udp, false, "/proc/net/udp"}, Table{SocketProtocol::udp, true, "/proc/net/udp6"}};

/// The kernel's word for a UDP socket that has no peer is that of a closed one.
std::uint32_t stateOf(SocketProtocol protocol) { return protocol == SocketProtocol::tcp ? TCP_LISTEN : TCP_CLOSE; }

constexpr std::size_t netlinkBufferBytes = 32 * 1024;

struct Question {
  nlmsghdr header{};
  inet_diag_req_v2 request{};
};

bool ask(const Descriptor& netlink, const Table& table) {
  Question question;
  question.header.nlmsg_len = sizeof question;
  question.header.nlmsg_type = SOCK_DIAG_BY_FAMILY;
  question.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
  question.request.sdiag_family = table.isIPv6 ? AF_INET6 : AF_INET;
  question.request.sdiag_protocol = table.protocol == SocketProtocol::tcp ? IPPROTO_TCP : IPPROTO_UDP;
  question.request.idiag_states = 1U << stateOf(table.protocol);
  return ::send(netlink.number(), &question, sizeof question, 0) == static_cast<ssize_t>(sizeof question);
}

std::string addressText(const void* address, bool isIPv6) {
  std::array<char, INET6_ADDRSTRLEN> text{};
  const char* const end = ::inet_ntop(isIPv6 ? AF_INET6 : AF_INET, address, text.data(), text.size());
  return end == nullptr ? "" : text.data();
}

ListeningSocket socketOf(const inet_diag_msg& message, const Table& table) {
  ListeningSocket socket;
  socket.protocol = table.protocol;
  socket.address = addressText(message.id.idiag_src, table.isIPv6);
  socket.port = ntohs(message.id.idiag_sport);
  socket.uid = message.idiag_uid;
  socket.number = message.idiag_inode;
  return socket;
}

/// Adds the sockets of one answer to a dump. False where it can't be read to its end.
bool readAnswers(const Descriptor& netlink, const Table& table, std::vector<ListeningSocket>& sockets) {
  alignas(nlmsghdr) std::array<char, netlinkBufferBytes> buffer{};
  for (;;) {
    const ssize_t received = ::recv(netlink.number(), buffer.data(), buffer.size(), 0);
    if (received <= 0) {
      return false;
    }
    std::size_t left = static_cast<std::size_t>(received);
    const char* at = buffer.data();
    nlmsghdr header{};
    while (left >= sizeof header) {
      std::memcpy(&header, at, sizeof header);
      if (header.nlmsg_type == NLMSG_DONE) {
        return true;
      }
      if (header.nlmsg_type == NLMSG_ERROR || header.nlmsg_len < sizeof header || header.nlmsg_len > left) {
        return false;
      }
      inet_diag_msg message{};
      if (header.nlmsg_len >= NLMSG_HDRLEN + sizeof message) {
        std::memcpy(&message, at + NLMSG_HDRLEN, sizeof message);
        if (message.id.idiag_sport != 0) {
          sockets.push_back(socketOf(message, table));
        }
      }
      const std::size_t step = std::min<std::size_t>(NLMSG_ALIGN(header.nlmsg_len), left);
      at += step;
      left -= step;
    }
  }
}

std::optional<std::vector<ListeningSocket>> askKernel() {
  const Descriptor netlink(::socket(AF_NETLINK, SOCK_DGRAM | SOCK_CLOEXEC, NETLINK_SOCK_DIAG));
  if (!netlink) {
    return std::nullopt;
  }
  // The kernel answers at once; a limit is for one that doesn't.
  const timeval patience{.tv_sec = 2, .tv_usec = 0};
  ::setsockopt(netlink.number(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
  std::vector<ListeningSocket> sockets;
  for (const Table& table : tables) {
    if (!ask(netlink, table) || !readAnswers(netlink, table, sockets)) {
      return std::nullopt;
    }
  }
  return sockets;
}

/// Eight hexadecimal digits for each 32-bit word, as it lies in the memory of this machine.
std::optional<std::string> parseAddress(std::string_view text, bool isIPv6) {
  std::array<std::uint32_t, 4> words{};
  const std::size_t count = isIPv6 ? words.size() : 1;
  constexpr std::size_t digits = 8;
  if (text.size() != count * digits) {
    return std::nullopt;
  }
  for (std::size_t word = 0; word < count; ++word) {
    const char* const begin = text.data() + (word * digits);
    if (std::from_chars(begin, begin + digits, words[word], 16).ptr != begin + digits) {
      return std::nullopt;
    }
  }
  return addressText(words.data(), isIPv6);
}

std::optional<ListeningSocket> parseSocket(std::string_view line, SocketProtocol protocol, bool isIPv6) {
  ListeningSocket socket{.protocol = protocol};
  takeWord(line);
  const std::string_view local = takeWord(line);
  const std::size_t colon = local.find(':');
  takeWord(line);
  const std::string_view stateText = takeWord(line);
  std::uint32_t state = 0;
  std::from_chars(stateText.data(), stateText.data() + stateText.size(), state, 16);
  const auto address = parseAddress(local.substr(0, std::min(colon, local.size())), isIPv6);
  if (colon == std::string_view::npos || state != stateOf(protocol) || !address) {
    return std::nullopt;
  }
  socket.address = *address;
  std::from_chars(local.data() + colon + 1, local.data() + local.size(), socket.port, 16);
  for (int word = 0; word < 3; ++word) {
    takeWord(line);
  }
  socket.uid = takeNumber<std::uint32_t>(line);
  takeWord(line);
  socket.number = takeNumber(line);
  return socket.port == 0 ? std::nullopt : std::optional(socket);
}

/// Calls `visit(name)` with each entry of a folder.
template <class Visit>
void forEachEntry(const Descriptor& folder, std::span<char> buffer, Visit visit) {
  for (;;) {
    const long count = ::syscall(SYS_getdents64, folder.number(), buffer.data(), buffer.size());
    if (count <= 0) {
      return;
    }
    for (long at = 0; at < count;) {
      const auto* const entry = reinterpret_cast<const dirent64*>(buffer.data() + at);
      visit(static_cast<const char*>(entry->d_name));
      at += entry->d_reclen;
    }
  }
}

/// The number of the socket that a link "socket:[123]" stands for; 0 for another link.
std::uint64_t socketNumber(const Descriptor& folder, const char* file) {
  std::array<char, 32> buffer{};
  const ssize_t length = ::readlinkat(folder.number(), file, buffer.data(), buffer.size());
  const std::string_view target(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
  constexpr std::string_view beginning = "socket:[";
  return target.starts_with(beginning) ? numberAtFront(target.substr(beginning.size())) : 0;
}

}  // namespace

std::vector<ListeningSocket> parseSocketTable(std::string_view table, SocketProtocol protocol, bool isIPv6) {
  std::vector<ListeningSocket> sockets;
  takeLine(table);
  while (!table.empty()) {
    if (const auto socket = parseSocket(takeLine(table), protocol, isIPv6)) {
      sockets.push_back(*socket);
    }
  }
  return sockets;
}

std::vector<ListeningSocket> LinuxSocketReader::listening() const {
  std::vector<ListeningSocket> sockets = askKernel().value_or(std::vector<ListeningSocket>());
  if (sockets.empty()) {
    for (const Table& table : tables) {
      std::ifstream file(table.file, std::ios::binary);
      const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
      std::ranges::copy(parseSocketTable(text, table.protocol, table.isIPv6), std::back_inserter(sockets));
    }
  }
  std::ranges::sort(sockets, {}, &ListeningSocket::number);
  return sockets;
}

std::vector<SocketHolder> LinuxSocketReader::holders(std::span<const ListeningSocket> sockets) const {
  std::vector<std::uint64_t> numbers;
  for (const ListeningSocket& socket : sockets) {
    numbers.push_back(socket.number);
  }
  std::ranges::sort(numbers);
  std::vector<SocketHolder> holders;
  const Descriptor processes(::open("/proc", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!processes || numbers.empty()) {
    return holders;
  }
  constexpr std::size_t bufferBytes = 32 * 1024;
  const auto buffer = std::make_unique_for_overwrite<std::uint64_t[]>(bufferBytes / sizeof(std::uint64_t) * 2);
  const std::span<char> ofProcesses(reinterpret_cast<char*>(buffer.get()), bufferBytes);
  const std::span<char> ofFiles(ofProcesses.data() + bufferBytes, bufferBytes);
  forEachEntry(processes, ofProcesses, [&](const char* name) {
    const auto pid = numberAtFront<std::int32_t>(name);
    if (pid <= 0) {
      return;
    }
    const Descriptor files(
        ::openat(processes.number(), (std::string(name) + "/fd").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!files) {
      return;
    }
    forEachEntry(files, ofFiles, [&](const char* file) {
      const std::uint64_t number = socketNumber(files, file);
      if (number != 0 && std::ranges::binary_search(numbers, number)) {
        holders.push_back({.pid = pid, .number = number, .descriptor = numberAtFront<std::int32_t>(file)});
      }
    });
  });
  std::ranges::sort(holders);
  const auto repeated = std::ranges::unique(
      holders, [](const auto& one, const auto& next) { return one.pid == next.pid && one.number == next.number; });
  holders.erase(repeated.begin(), repeated.end());
  return holders;
}

bool LinuxSocketReader::areStillHeld(std::span<const SocketHolder> holders) const {
  const Descriptor processes(::open("/proc", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  return std::ranges::all_of(holders, [&](const SocketHolder& holder) {
    const std::string link = std::to_string(holder.pid) + "/fd/" + std::to_string(holder.descriptor);
    return socketNumber(processes, link.c_str()) == holder.number;
  });
}

}  // namespace lumenary
