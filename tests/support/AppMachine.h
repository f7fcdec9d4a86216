#pragma once

#include <string>

#include "platform/linux/LinuxAppRegistry.h"
#include "platform/linux/LinuxDurableFiles.h"
#include "platform/linux/LinuxFileReader.h"
#include "support/TemporaryHome.h"

namespace lumenary {

/// A made machine: below one folder a home and all the places where apps stand.
class AppMachine : public TemporaryHome {
 public:
  AppMachine() {
    roots.applicationFolders = {path(".local/share/applications"), path("usr/share/applications"),
                                path("var/lib/flatpak/exports/share/applications"), path("var/lib/snapd/desktop")};
    roots.flatpakInstallations = {path("var/lib/flatpak"), path(".local/share/flatpak")};
    roots.flatpakConfigurations = path("etc/flatpak");
    roots.snapFolders = {path("snap-mounts")};
    roots.snapFiles = path("var/lib/snapd/snaps");
    roots.appImageFolders = {path("Applications"), path("Downloads")};
    roots.programFolders = {path("usr/bin")};
    roots.sharedFolders = {path("opt"), path("usr/lib"), path("usr/share")};
  }

  void makeEntry(const std::string& relative, const std::string& keys) {
    write(relative, "[Desktop Entry]\nType=Application\n" + keys + "\n");
  }
  void makeFlatpak(const std::string& id, const std::string& installation = "var/lib/flatpak") {
    const std::string active = installation + "/app/" + id + "/x86_64/stable/4711";
    makeEntry(active + "/export/share/applications/" + id + ".desktop",
              "Name=Flat " + id + "\nExec=/usr/bin/flatpak run --command=run-it " + id + " %u\nX-Flatpak=" + id);
    write(active + "/files/bin/run-it");
    build({{installation + "/app/" + id + "/x86_64/stable/active", LinkTo{"4711"}},
           {installation + "/app/" + id + "/current", LinkTo{"x86_64/stable"}}});
  }

  LinuxAppRegistry registry() { return {reader, files, roots}; }

  LinuxKernel kernel;
  LinuxFileReader reader;
  LinuxDurableFiles files{kernel};
  LinuxAppRoots roots;
};

}  // namespace lumenary
