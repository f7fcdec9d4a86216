#pragma once

#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "apps/AppInventoryScanner.h"
#include "platform/linux/LinuxDurableFiles.h"
#include "platform/linux/LinuxFileReader.h"
#include "support/TemporaryHome.h"

namespace lumenary {

/// A home with applications and a Library.
class AppHome : public TemporaryHome {
 public:
  AppHome() {
    scanner.home = root();
    scanner.layout = macLayout(root());
    scanner.applicationFolders = {path("Applications"), path("own/Applications")};
    scanner.isInstalledAnywhere = [](std::string_view) { return false; };
    scanner.now = [] { return Date(); };
  }

  void makeBundle(const std::string& at, const std::string& keys) {
    write(at + "/Contents/Info.plist", "<plist version=\"1.0\"><dict>" + keys + "</dict></plist>");
  }
  void makeApp(const std::string& name, const std::string& id) {
    makeBundle("Applications/" + name + ".app", "<key>CFBundleIdentifier</key><string>" + id + "</string>");
  }
  /// A file of one block in that folder of the Library.
  void fill(const std::string& folder) { build({{"Library/" + folder + "/file", 1}}); }

  AppInventory inventory() { return scanner.inventory(reader, files); }

  /// "title @ path below the home" of each thing that the app of that name keeps; none where there is no such app.
  std::optional<std::set<std::string>> itemsOf(const AppInventory& inventory, const std::string& name) const {
    for (const InstalledApp& app : inventory.apps) {
      if (app.name == name) {
        return told(app.items);
      }
    }
    return std::nullopt;
  }
  /// The same of leftovers, by their identifier.
  std::vector<std::pair<std::string, std::set<std::string>>> leftovers(const AppInventory& inventory) const {
    std::vector<std::pair<std::string, std::set<std::string>>> all;
    for (const LeftoverGroup& group : inventory.leftovers) {
      all.emplace_back(group.bundleID, told(group.items));
    }
    return all;
  }
  std::set<std::string> told(const std::vector<AppDataItem>& items) const {
    std::set<std::string> all;
    for (const AppDataItem& item : items) {
      all.insert(item.title + " @ " + item.url.path.substr(root().size() + 1));
    }
    return all;
  }

  LinuxKernel kernel;
  LinuxFileReader reader;
  LinuxDurableFiles files{kernel};
  AppInventoryScanner scanner;
};

}  // namespace lumenary
