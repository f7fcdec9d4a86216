#pragma once

#include "platform/FileReader.h"

namespace lumenary {

/// Folders by getdents64, attributes by statx. A path is absolute and may have any length; one that is relative or
/// holds a NUL is EINVAL.
class LinuxFileReader final : public FileReader {
 public:
  SystemResult<Descriptor> openFolder(std::string_view path, LinkPolicy links) const override;
  SystemResult<Descriptor> openFolder(const Descriptor& parent, const char* name) const override;
  SystemResult<std::span<const FolderEntry>> nextEntries(const Descriptor& folder,
                                                         FolderScratch& scratch) const override;
  /// With `LinkPolicy::refuse` a link in the last component of a path is itself what is looked at.
  SystemResult<FileAttributes> attributes(std::string_view path, LinkPolicy links) const override;
  SystemResult<FileAttributes> attributes(const Descriptor& folder, const char* name) const override;
  SystemResult<FileAttributes> attributes(const Descriptor& folder) const override;
  /// A relative path starts at the current folder. Longer than PATH_MAX is ENAMETOOLONG.
  SystemResult<std::string> realPath(std::string_view path) const override;
};

}  // namespace lumenary
