#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "platform/DurableFiles.h"
#include "platform/FileMetadata.h"

namespace lumenary {

/// The list of recently used files that desktops share, and the extended attributes that browsers and downloaders
/// write.
class LinuxFileMetadata final : public FileMetadata {
 public:
  /// `recentFiles` is "recently-used.xbel" in the person's data folder.
  LinuxFileMetadata(DurableFiles& files, std::string recentFiles)
      : files_(files), recentFiles_(std::move(recentFiles)) {}

  std::optional<Date> lastOpened(std::span<const std::string> paths) const override;
  std::optional<std::string> downloadedFrom(const std::string& path) const override;

 private:
  DurableFiles& files_;
  std::string recentFiles_;
};

/// The host of a web or FTP address, in lower case and without a leading "www."; none where the text is no such
/// address or its host holds anything but what names and numbers of hosts are made of.
std::optional<std::string> hostOfAddress(std::string_view address);

}  // namespace lumenary
