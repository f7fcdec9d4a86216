#pragma once

#include <cstdint>
#include <stop_token>
#include <string>
#include <vector>

#include "platform/FileReader.h"
#include "platform/linux/KernelFiles.h"

namespace lumenary {

/// Removes a file, or a folder with all that is in it, for good: by descriptor, depth first, without following a link
/// or entering another mount. One folder is open at a time, so neither depth nor the length of a path matters. What
/// fails is left, and the rest is removed all the same. One thread.
class TreeRemoval {
 public:
  /// All references must outlive the value. Only folders of this user are opened for writing.
  TreeRemoval(LinuxKernel& kernel, const FileReader& reader, std::uint32_t userID, const std::stop_token& stop)
      : kernel_(kernel), reader_(reader), userID_(userID), stop_(stop) {}

  /// What stands under that name in that folder. The first error that left something in place; ECANCELED after a stop
  /// request. A thing that isn't there is removed already.
  SystemResult<void> remove(const Descriptor& parent, const std::string& name);

  /// Lets this person write into and through a folder of theirs that is closed. Best effort.
  void openForWriting(const Descriptor& parent, const std::string& name);

 private:
  /// A folder on the way from the top to the one that is open.
  struct Level {
    std::string name;
    FileIdentity identity;
    std::vector<std::string> subfolders;  ///< still to be removed
    bool isClean = true;                  ///< nothing in it failed
  };

  SystemResult<Descriptor> open(const Descriptor& parent, const std::string& name, const KernelStatus& top);
  SystemResult<void> removeFolder(const Descriptor& parent, const std::string& name, const KernelStatus& top);
  SystemResult<void> removeFiles(const Descriptor& folder, Level& level);
  SystemResult<Descriptor> leave(const Descriptor& folder, const Level& around);
  void note(const SystemError& error);

  LinuxKernel& kernel_;
  const FileReader& reader_;
  std::uint32_t userID_;
  const std::stop_token& stop_;
  FolderScratch scratch_;
  SystemError firstError_{};
};

}  // namespace lumenary
