#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include "platform/Places.h"
#include "support/TemporaryTree.h"

namespace lumenary {

/// A home folder of a test's own. Nothing of the real home is touched.
class TemporaryHome : public TemporaryTree {
 public:
  std::string trash(const std::string& relative) const { return places().dataHome + "/Trash/" + relative; }

  Places places() const {
    Places places;
    places.home = root();
    places.dataHome = path(".local/share");
    places.configHome = path(".config");
    places.cacheHome = path(".cache");
    places.stateHome = path(".local/state");
    places.support = places.dataHome + "/Lumenary";
    places.defaultsFile = places.configHome + "/Lumenary/defaults.json";
    places.userID = ::geteuid();
    return places;
  }

  void write(const std::string& relative, const std::string& text = "x") { build({{relative, Content{text}}}); }
  void makeFolder(const std::string& relative) { build({{relative + "/"}}); }
};

/// True where something stands at an absolute path, a link that leads nowhere included.
inline bool standsAt(const std::string& path) { return std::filesystem::exists(std::filesystem::symlink_status(path)); }

inline std::string contentsOf(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

/// The names in a folder; empty where it is missing.
inline std::set<std::string> namesIn(const std::string& folder) {
  std::set<std::string> names;
  std::error_code missing;
  for (const auto& entry : std::filesystem::directory_iterator(folder, missing)) {
    names.insert(entry.path().filename().string());
  }
  return names;
}

}  // namespace lumenary
