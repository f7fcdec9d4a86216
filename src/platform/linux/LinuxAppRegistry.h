#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/AppRegistry.h"
#include "platform/DurableFiles.h"
#include "platform/FileReader.h"
#include "platform/linux/LinuxAppRoots.h"

namespace lumenary {

/// Desktop entries, Flatpaks, snaps and AppImages, in this order. None of their tools is run.
class LinuxAppRegistry final : public AppRegistry {
 public:
  /// `reader` and `files` must outlive the value.
  LinuxAppRegistry(const FileReader& reader, DurableFiles& files, LinuxAppRoots roots)
      : reader_(reader), files_(files), roots_(std::move(roots)) {}

  std::vector<RegisteredApp> apps() const override;
  bool isInstalled(std::string_view id) const override;
  std::vector<std::string> watchedFolders() const override;

 private:
  bool hasDesktopEntry(std::string_view lowered) const;
  bool isAppImageOf(std::string_view lowered) const;

  const FileReader& reader_;
  DurableFiles& files_;
  const LinuxAppRoots roots_;
};

}  // namespace lumenary
