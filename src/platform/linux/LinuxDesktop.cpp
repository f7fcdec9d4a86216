#include "platform/linux/LinuxDesktop.h"

#include <chrono>

#include "base/FileURL.h"
#include "base/Path.h"

namespace lumenary {

void LinuxDesktop::notify(const std::string& title, const std::string& body, const std::string& identifier) {
  // The two dashes: a name in the title may begin with one.
  tools_.run({.path = "/usr/bin/notify-send",
              .arguments = {"--app-name=Hearthkeep", "--hint=string:x-canonical-private-synchronous:" + identifier,
                            "--", title, body},
              .timeLimit = std::chrono::seconds(3)});
}

void LinuxDesktop::reveal(const std::string& path) {
  // An encoded address holds no comma, by which the tool would part it.
  const auto answer =
      tools_.run({.path = "/usr/bin/dbus-send",
                  .arguments = {"--session", "--print-reply", "--dest=org.freedesktop.FileManager1",
                                "/org/freedesktop/FileManager1", "org.freedesktop.FileManager1.ShowItems",
                                "array:string:file://" + percentEncoded(path), "string:"},
                  .timeLimit = std::chrono::seconds(3)});
  if (!answer || answer->status != 0) {
    tools_.start({.path = "/usr/bin/xdg-open", .arguments = {std::string(parentPath(path))}});
  }
}

void LinuxDesktop::showTrash() { tools_.start({.path = "/usr/bin/xdg-open", .arguments = {"trash:///"}}); }

}  // namespace lumenary
