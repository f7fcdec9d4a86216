#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "cleanup/command/CleanupCommand.h"
#include "platform/DesktopModule.h"
#include "platform/Platform.h"

/// Which face this process has is told by its first argument alone, before anything else is made.
int main(int argumentCount, char** arguments) {
  if (argumentCount >= 2 && std::string_view(arguments[1]) == "cleanup") {
    const std::vector<std::string> options(arguments + 2, arguments + argumentCount);
    lumenary::Platform platform = lumenary::makePlatform();
    // What the platform holds goes with the process: nothing is waited for.
    std::exit(lumenary::CleanupCommand::run(options, platform));
  }
  const auto desktop = lumenary::openDesktopModule();
  if (!desktop) {
    std::fputs((desktop.error() + "\n").c_str(), stderr);
    return 2;
  }
  return (*desktop)(argumentCount, arguments);
}
