#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Require.h"
#include "base/Path.h"
#include "platform/linux/LinuxFileMetadata.h"
#include "platform/linux/RecentFiles.h"

/// The desktop's list of recently used files gives standardised paths, and an address a host that nothing hides in.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace lumenary;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  forEachRecentFile(text, [](const RecentFile& file) { require(isStandard(file.path)); });
  if (const auto host = hostOfAddress(text)) {
    require(!host->empty() && host->find_first_of("/@ \n\x1b") == std::string::npos);
  }
  return 0;
}
