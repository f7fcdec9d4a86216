#include "platform/linux/LinuxDesktop.h"

#include <chrono>

namespace lumenary {

void LinuxDesktop::notify(const std::string& title, const std::string& body, const std::string& identifier) {
  // The two dashes: a name in the title may begin with one.
  tools_.run({.path = "/usr/bin/notify-send",
              .arguments = {"--app-name=Hearthkeep", "--hint=string:x-canonical-private-synchronous:" + identifier,
                            "--", title, body},
              .timeLimit = std::chrono::seconds(3)});
}

void LinuxDesktop::showTrash() { tools_.start({.path = "/usr/bin/xdg-open", .arguments = {"trash:///"}}); }

}  // namespace lumenary
