#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Date.h"
#include "monitoring/PortEntry.h"
#include "platform/FileReader.h"
#include "platform/ProcessReader.h"
#include "platform/SocketReader.h"

namespace lumenary {

/// Lists what listens on this machine, with the project that each process runs in. From any thread.
class PortInspector {
 public:
  PortInspector(const SocketReader& sockets, const ProcessReader& processes, const FileReader& files,
                const std::string& home);

  /// All ports, by number, protocol, process name and process id. A port whose process can't be seen is listed with
  /// whose it is.
  std::vector<PortEntry> inspect() const;

  /// The same for watching: as long as the sockets and those who hold them are the same, what the last look found
  /// stands for half a minute. One that shares a socket without having opened it, and a server that went to another
  /// folder, are seen with that delay.
  std::vector<PortEntry> listeningPorts(Date now);

  /// The folder of the project that `path` lies in; none for a path that is not below the person's home, or below its
  /// Library, its Trash or anything hidden. Without a marker of a project it is the path itself.
  std::optional<std::string> projectRoot(std::string_view path) const;

  /// The first words of a command line without its interpreter, 48 characters at most; none for an empty one.
  static std::optional<std::string> shortCommand(std::span<const std::string> arguments);

 private:
  struct ProcessDetails {
    std::string name;
    std::optional<std::string> projectRoot{};
    std::optional<std::string> command{};
    std::optional<Date> startedAt{};
    std::optional<std::uint32_t> ownerUID{};
  };
  using ProjectCache = std::map<std::string, std::optional<std::string>, std::less<>>;

  struct Look {
    std::vector<ListeningSocket> sockets;
    std::vector<SocketHolder> holders;
    std::vector<PortEntry> ports;
  };
  Look look() const;
  ProcessDetails processDetails(std::int32_t pid, ProjectCache& projectCache) const;

  const SocketReader& sockets_;
  const ProcessReader& processes_;
  const FileReader& files_;
  std::string home_;
  std::mutex lock_;
  std::optional<Look> last_;
  Date lastAt_{};
};

}  // namespace lumenary
