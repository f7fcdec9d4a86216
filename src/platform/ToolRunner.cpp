#include "platform/ToolRunner.h"

#include <utility>

#include "base/Text.h"

namespace lumenary {

std::optional<std::string> toolText(const ToolRunner& tools, const ToolCommand& command) {
  std::optional<ToolOutput> result = tools.run(command);
  if (!result || !isUTF8(result->output)) {
    return std::nullopt;
  }
  return std::move(result->output);
}

}  // namespace lumenary
