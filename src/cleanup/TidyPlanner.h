#pragma once

#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>

#include "base/Date.h"
#include "cleanup/CleanupCatalog.h"
#include "cleanup/DuplicateGroup.h"
#include "cleanup/StorageTrashGate.h"
#include "cleanup/TidyPlan.h"
#include "platform/FileReader.h"
#include "storage/StorageScanResult.h"

namespace lumenary {

/// Turns a finished scan into a plan, from what the scan has kept: the disk is asked only whether a folder is a
/// project. Each place is judged by the catalog and the gate; thresholds, order, and that nothing counts twice are
/// decided here.
class TidyPlanner {
 public:
  /// Whether a folder holds the files of a project.
  using IsProject = std::function<bool(std::string_view folder)>;

  /// All references must outlive the value.
  TidyPlanner(const FileReader& reader, const CleanupCatalog& catalog, const StorageTrashGate& gate)
      : reader_(reader), catalog_(catalog), gate_(gate) {}

  /// Caches and build output first, then duplicates, old installers, and `junk`. An item never stands inside another.
  TidyPlan plan(const StorageScanResult& result, std::span<const DuplicateGroup> duplicates,
                std::span<const FileEntry> junk, bool includeBuildFiles, Date now) const;

  /// Whether a file stands among the person's own: below one of their folders, in no project, app or tool's output.
  /// `further` are folders of theirs that go by other names.
  static bool isPersonalCopy(std::string_view path, std::string_view home, const IsProject& isProject,
                             std::span<const std::string> further = {});

 private:
  class Draft;

  const FileReader& reader_;
  const CleanupCatalog& catalog_;
  const StorageTrashGate& gate_;
};

}  // namespace lumenary
