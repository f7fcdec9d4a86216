#pragma once

#include <span>
#include <string>
#include <vector>

#include "base/Date.h"
#include "platform/AppRegistry.h"
#include "platform/DurableFiles.h"
#include "storage/JsonFields.h"

namespace lumenary {

/// An app that was installed when an inventory was made.
struct SeenApp {
  std::string id;
  std::string name;
  AppOrigin origin = AppOrigin::desktopEntry;
  std::string program{};                 ///< the file that it started; empty where that couldn't be told
  std::vector<std::string> dataNames{};  ///< further names of its folders
  Date firstSeen;
  Date lastSeen;

  bool operator==(const SeenApp&) const = default;
};

/// What apps there were, dated: "seen-apps.json" in the program's own folder. An app of which a file is all there is
/// isn't noted: such files come and go, and are started from anywhere.
class SeenApps {
 public:
  static constexpr std::size_t limit = 5'000;

  /// `files` must outlive the value.
  SeenApps(DurableFiles& files, const std::string& supportFolder);

  /// By identifier; empty where none were noted or the file can't be read.
  std::vector<SeenApp> load();
  /// Notes that these are installed now, written back as far as that can be done, and once a day if nothing is new. A
  /// damaged file is kept once beside it as "seen-apps.unreadable.json" before it is replaced.
  void note(std::span<const RegisteredApp> apps, Date now);

 private:
  struct Stored;
  Stored read();

  DurableFiles& files_;
  std::string support_;
  std::string path_;
};

}  // namespace lumenary
