#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "storage/FileEntry.h"

namespace lumenary {

/// Files with the same bytes.
struct DuplicateGroup {
  std::string id;  ///< their digest
  FileEntry keep;  ///< the copy to keep
  std::vector<FileEntry> extras;
  bool sameFolder = false;  ///< all of them stand in one folder

  bool operator==(const DuplicateGroup&) const = default;
};

/// Whether `a` is rather kept than `b`: a name that isn't one of a copy, a place outside of Downloads, the older one,
/// the smaller path; the first difference decides.
bool keepFirst(const FileEntry& a, const FileEntry& b);

/// True for what lies in a Trash, be it the person's, a volume's or a confined app's own: its copy elsewhere is the
/// only one that lasts.
bool isInTrash(std::string_view path);

/// A name as a copy is given: "report copy.pdf", "report (1).pdf", "report-2.pdf".
bool looksLikeCopy(std::string_view name);

}  // namespace lumenary
