#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Require.h"
#include "base/Text.h"
#include "cleanup/command/Options.h"

// Arguments, one a line. Whatever is accepted keeps the rule that nothing moves without a number of days, and whatever
// is refused can be told on a terminal.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace lumenary;
  std::vector<std::string> arguments;
  for (std::string_view text(reinterpret_cast<const char*>(data), size); !text.empty();) {
    const auto end = std::min(text.find('\n'), text.size());
    arguments.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  const auto options = CleanupCommand::parse(arguments);
  if (options) {
    require(!options->days || *options->days > 0);
    require(!options->trash || options->days);
  } else {
    const std::string shown = displayText(options.error().message);
    require(shown.find('\x1b') == std::string::npos && shown.find('\n') == std::string::npos);
  }
  return 0;
}
