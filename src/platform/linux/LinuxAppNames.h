#pragma once

#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "platform/AppNames.h"
#include "platform/linux/LinuxPlaces.h"

namespace lumenary {

/// The folders in which desktop entries stand, the person's own first: below $XDG_DATA_HOME and $XDG_DATA_DIRS, and
/// where Flatpak and Snap put theirs.
std::vector<std::string> applicationFolders(const Environment& environment, const Places& places);

/// The "Name" of desktop entries, read when it is first asked for.
class LinuxAppNames final : public AppNames {
 public:
  explicit LinuxAppNames(std::vector<std::string> folders) : folders_(std::move(folders)) {}

  std::optional<std::string> nameOf(std::string_view identifier) const override;

 private:
  std::vector<std::string> folders_;
  mutable std::mutex lock_;
  mutable std::map<std::string, std::optional<std::string>, std::less<>> names_;  ///< by the identifier in lower case
};

}  // namespace lumenary
