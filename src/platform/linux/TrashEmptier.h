#pragma once

#include <atomic>
#include <cstddef>
#include <mutex>
#include <optional>
#include <set>
#include <stop_token>
#include <string>
#include <vector>

#include "platform/FileReader.h"
#include "platform/TrashBin.h"
#include "platform/linux/TrashFolder.h"
#include "platform/linux/TrashSizes.h"
#include "platform/linux/TreeRemoval.h"

namespace lumenary {

/// Empties one opened Trash.
class TrashEmptier {
 public:
  /// All references must outlive the value.
  TrashEmptier(LinuxKernel& kernel, const FileReader& reader, const TrashFolder& trash, std::uint32_t userID,
               const std::stop_token& stop)
      : kernel_(kernel), reader_(reader), trash_(trash), userID_(userID), stop_(stop) {}

  /// The names of the items.
  SystemResult<std::vector<std::string>> items() const { return namesIn(trash_.files); }

  /// Removes the items on that many threads. `done` is called after each, one call at a time.
  void removeItems(const std::vector<std::string>& names, unsigned workers, const std::function<void()>& done);
  /// What an emptying that was killed left: folders on their way out, and info files of items that are gone.
  void removeRemains();
  /// Brings the Trash's list of sizes into line, and all of it onto the disk.
  void finish();

  const TrashEmptying& result() const { return result_; }

 private:
  SystemResult<std::vector<std::string>> namesIn(const Descriptor& folder) const;
  SystemResult<void> removeItem(TreeRemoval& removal, const std::string& name);
  SystemResult<void> removeFolder(TreeRemoval& removal, const std::string& name);
  SystemResult<Descriptor> openExpunged() const;
  const Descriptor* expunged();
  void account(const std::string& name, const SystemResult<void>& removed);

  LinuxKernel& kernel_;
  const FileReader& reader_;
  const TrashFolder& trash_;
  std::uint32_t userID_;
  const std::stop_token& stop_;
  std::mutex lock_;
  std::set<std::string> keptOut_;  ///< items whose remains could not go back to their place
  std::optional<SystemResult<Descriptor>> expunged_;
  TrashEmptying result_;
  FolderSizeChanges sizes_;
};

}  // namespace lumenary
