#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "platform/FileReader.h"
#include "platform/GuardList.h"
#include "platform/MountTable.h"
#include "platform/Places.h"
#include "platform/Trash.h"
#include "platform/linux/ExclusiveMove.h"
#include "platform/linux/TrashFolder.h"
#include "platform/linux/TrashSizes.h"

namespace lumenary {

/// The freedesktop.org Trash on file descriptors. A move is: guard list, Trash folder of the same file system, then for
/// a free name: intent, info file, exclusive rename, read back, sync. Killed anywhere, the item stands whole in one
/// place, and the intent tells `settle` what to look for.
class LinuxTrash final : public Trash {
 public:
  /// All references must outlive the Trash.
  LinuxTrash(LinuxKernel& kernel, const FileReader& reader, const MountTable& mountTable, const Places& places)
      : kernel_(kernel), reader_(reader), mountTable_(mountTable), places_(places), folders_(kernel, reader, places) {}

  std::expected<void, TrashError> check(const OpenedItem& item) override;
  std::expected<TrashedItem, TrashError> move(const OpenedItem& item, std::int64_t allocatedBytes,
                                              IntentRecorder& recorder) override;
  std::expected<TrashedItem, TrashError> putBack(const std::string& trashPath, const std::string& originalPath,
                                                 Date recorded, IntentRecorder& recorder) override;
  ActState settle(const TrashIntent& intent) override;
  void writeSizes() override;

 private:
  /// With the account's own home, which is guarded as well.
  Places guardedPlaces() const;
  struct Attempt;

  std::expected<TrashedItem, TrashError> moveInto(const TrashFolder& trash, const OpenedItem& item,
                                                  std::int64_t allocatedBytes, IntentRecorder& recorder);
  Attempt attempt(const TrashFolder& trash, const OpenedItem& item, const std::string& name, IntentRecorder& recorder);
  bool isTaken(const TrashFolder& trash, const std::string& name);
  struct Findings;
  std::optional<Findings> find(const TrashFolder& trash, const std::string& name, const TrashIntent& intent,
                               const Mount& mount);
  ActState settleInfoOfAbsent(const TrashFolder& trash, const std::string& name, const TrashIntent& intent,
                              const Findings& found);
  ActState settleInfoOfPresent(const TrashFolder& trash, const std::string& name, const TrashIntent& intent,
                               const Findings& found);
  void noteSize(const TrashFolder& trash, const std::string& name, std::int64_t allocatedBytes);

  LinuxKernel& kernel_;
  const FileReader& reader_;
  const MountTable& mountTable_;
  const Places& places_;
  mutable std::optional<std::string> accountHome_;  ///< once the password database has answered
  TrashFolders folders_;
  std::map<std::string, FolderSizeChanges> sizeChanges_;  ///< by the path of the Trash
};

}  // namespace lumenary
