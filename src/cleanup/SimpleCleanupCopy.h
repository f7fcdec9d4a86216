#pragma once

#include <string_view>

/// Build folders in words for whoever doesn't program.
namespace lumenary::SimpleCleanupCopy {

/// What a folder of that name is: "Installed packages".
std::string_view kind(std::string_view folderName);

}  // namespace lumenary::SimpleCleanupCopy
