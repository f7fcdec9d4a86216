#include <dlfcn.h>

#include <array>
#include <cstdlib>
#include <filesystem>

#include "platform/DesktopModule.h"

namespace lumenary {
namespace {

constexpr auto moduleName = "lumenary-desktop.so";
constexpr auto entryName = "lumenaryDesktopMain";

bool isSet(const char* name) {
  const char* const value = std::getenv(name);
  return value != nullptr && *value != '\0';
}

}  // namespace

std::expected<DesktopMain, std::string> openDesktopModule() {
  if (!isSet("DISPLAY") && !isSet("WAYLAND_DISPLAY") && !isSet("QT_QPA_PLATFORM")) {
    return std::unexpected("There is no display here, so no window can open. `Lumenary cleanup` works without one.");
  }
  std::error_code unreadable;
  const std::filesystem::path folder = std::filesystem::read_symlink("/proc/self/exe", unreadable).parent_path();
  for (const auto& place : std::array{folder / moduleName, folder.parent_path() / "lib/lumenary" / moduleName}) {
    if (!std::filesystem::exists(place, unreadable)) {
      continue;
    }
    void* const module = dlopen(place.c_str(), RTLD_NOW | RTLD_LOCAL);
    void* const entry = module == nullptr ? nullptr : dlsym(module, entryName);
    if (entry != nullptr) {
      return reinterpret_cast<DesktopMain>(entry);
    }
    const char* const reason = dlerror();
    return std::unexpected("The window can't be opened: " + std::string(reason == nullptr ? place.string() : reason));
  }
  return std::unexpected("The window can't be opened: " + std::string(moduleName) +
                         " isn't beside the program. `Lumenary cleanup` works without it.");
}

}  // namespace lumenary
