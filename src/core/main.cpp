#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "cleanup/command/CleanupCommand.h"
#include "platform/Platform.h"

/// Which face this process has is told by its first argument alone, before anything else is made.
int main(int argumentCount, char** arguments) {
  if (argumentCount >= 2 && std::string_view(arguments[1]) == "cleanup") {
    const std::vector<std::string> options(arguments + 2, arguments + argumentCount);
    lumenary::Platform platform = lumenary::makePlatform();
    // What the platform holds goes with the process: nothing is waited for.
    std::exit(lumenary::CleanupCommand::run(options, platform));
  }
  std::fputs("The desktop face isn't in this build; the command is `Lumenary cleanup`.\n", stderr);
  return 2;
}
