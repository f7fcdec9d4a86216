#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/AppRegistry.h"
#include "platform/FileReader.h"
#include "platform/linux/LinuxAppRoots.h"

namespace lumenary {

/// What the name of an AppImage tells: "Cursor-0.42.3-x86_64.AppImage" is version 0.42.3 of Cursor.
struct AppImageName {
  std::string name;
  std::optional<std::string> version{};

  bool operator==(const AppImageName&) const = default;
};

bool isAppImage(std::string_view path);
AppImageName appImageName(std::string_view fileName);

/// The AppImages in the folders where people keep them, each under the name in its file's name.
std::vector<RegisteredApp> appImages(const FileReader& reader, const LinuxAppRoots& roots);

}  // namespace lumenary
