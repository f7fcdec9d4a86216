#include "platform/linux/FolderNames.h"

#include <algorithm>
#include <cerrno>

namespace lumenary {
namespace {

constexpr std::size_t mostEntries = 100'000;

}  // namespace

SystemResult<FolderNames> folderNames(const FileReader& reader, const std::string& path) {
  const auto folder = reader.openFolder(path, LinkPolicy::follow);
  if (!folder) {
    return std::unexpected(folder.error());
  }
  FolderNames names;
  FolderScratch scratch;
  for (;;) {
    const auto entries = reader.nextEntries(*folder, scratch);
    if (!entries) {
      return std::unexpected(entries.error());
    }
    if (entries->empty()) {
      std::ranges::sort(names);
      return names;
    }
    for (const FolderEntry& entry : *entries) {
      names.emplace_back(std::string(entry.name, entry.length), entry.kind);
    }
    if (names.size() > mostEntries) {
      return std::unexpected(SystemError{EFBIG});
    }
  }
}

}  // namespace lumenary
