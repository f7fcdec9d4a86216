#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Require.h"
#include "platform/linux/LinuxAppControl.h"
#include "platform/linux/LinuxSocketReader.h"
#include "platform/linux/LinuxSystemCounters.h"
#include "platform/linux/ProcessFiles.h"

/// What stands below /proc: numbers and names that others chose, in any order and of any length.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace lumenary;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  if (const auto stat = parseProcessStat(text)) {
    require(stat->name.size() < text.size());
  }
  parseProcessStatus(text);
  std::size_t bytes = 0;
  for (const std::string& argument : parseArguments(text)) {
    require(!argument.contains('\0'));
    bytes += argument.size() + 1;
  }
  require(bytes <= size + 1);
  require(!appIDOfControlGroup(text).contains('/') || text.contains("\\x2f"));
  require(!LinuxAppControl::appUnit(text).contains('/'));
  for (const bool isIPv6 : {false, true}) {
    for (const ListeningSocket& socket : parseSocketTable(text, SocketProtocol::tcp, isIPv6)) {
      require(socket.port != 0 && !socket.address.empty());
    }
  }
  parseCPUTicks(text);
  if (const auto info = parseMemoryInfo(text)) {
    const std::uint32_t level = pressureLevel(text, *info);
    require(level == 1 || level == 2 || level == 4);
  }
  return 0;
}
