#pragma once

#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "monitoring/PortEntry.h"
#include "platform/FileReader.h"
#include "platform/ProcessReader.h"
#include "platform/SocketReader.h"

namespace lumenary {

/// Lists what listens on this machine, with the project that each process runs in. From any thread.
class PortInspector {
 public:
  PortInspector(const SocketReader& sockets, const ProcessReader& processes, const FileReader& files, std::string home);

  /// All ports, by number, protocol, process name and process id. A port whose process can't be seen is listed with
  /// whose it is.
  std::vector<PortEntry> inspect() const;

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

  ProcessDetails processDetails(std::int32_t pid, ProjectCache& projectCache) const;

  const SocketReader& sockets_;
  const ProcessReader& processes_;
  const FileReader& files_;
  std::string home_;
};

}  // namespace lumenary
