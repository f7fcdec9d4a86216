#include "cleanup/SimpleCleanupCopy.h"

namespace lumenary::SimpleCleanupCopy {

std::string_view kind(std::string_view folderName) {
  if (folderName == "node_modules") {
    return "Installed packages";
  }
  if (folderName == ".next" || folderName == "dist" || folderName == "build" || folderName == ".build") {
    return "Generated build files";
  }
  return folderName == "DerivedData" ? "Xcode build files" : "Project files to look at";
}

}  // namespace lumenary::SimpleCleanupCopy
