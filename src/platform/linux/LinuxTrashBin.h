#pragma once

#include <string>
#include <vector>

#include "platform/FileReader.h"
#include "platform/MountTable.h"
#include "platform/Places.h"
#include "platform/TrashBin.h"
#include "platform/linux/TrashFolder.h"

namespace lumenary {

/// All Trash folders of this person, by the freedesktop.org specification. A folder leaves the Trash whole, by a rename
/// to `expunged`, before anything in it is removed: killed anywhere, what can be put back from the Trash is complete.
class LinuxTrashBin final : public TrashBin {
 public:
  /// All references must outlive the value. `workers` threads remove items of one Trash side by side.
  LinuxTrashBin(LinuxKernel& kernel, const FileReader& reader, const MountTable& mountTable, const Places& places,
                unsigned workers)
      : kernel_(kernel),
        reader_(reader),
        mountTable_(mountTable),
        places_(places),
        folders_(kernel, reader, places),
        workers_(workers) {}

  SystemResult<std::vector<std::string>> itemFolders() const override;
  TrashEmptying empty(const EmptyingProgress& progress, const std::stop_token& stop) override;

 private:
  LinuxKernel& kernel_;
  const FileReader& reader_;
  const MountTable& mountTable_;
  const Places& places_;
  TrashFolders folders_;
  unsigned workers_;
};

}  // namespace lumenary
