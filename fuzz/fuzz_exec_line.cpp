#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Require.h"
#include "platform/linux/ExecLine.h"
#include "platform/linux/LinuxAppImages.h"

/// A command line of a desktop entry has words, none longer than all of it, and starts one of them or nothing.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace lumenary;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  if (const auto words = parseExecLine(text)) {
    require(!words->empty());
    std::size_t total = 0;
    for (const std::string& word : *words) {
      total += word.size();
    }
    require(total <= text.size());
    const StartedProgram started = startedProgram(*words);
    require(started.name.size() <= text.size() && !started.snap.contains('.'));
    require(started.flatpakID.empty() || started.snap.empty());
  }
  if (!text.contains('/') && isAppImage(text)) {
    require(appImageName(text).name.size() <= text.size());
  }
  return 0;
}
