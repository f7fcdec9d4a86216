#pragma once

#include <cstdint>
#include <string_view>

#include "storage/AppDataVerdict.h"

namespace lumenary {

/// Where a thing lies that an app keeps, in the order in which these places are looked through.
enum class AppDataKind : std::uint8_t {
  caches,
  logs,
  savedState,
  httpStorage,
  webKit,
  support,
  container,
  homeFolder,
};

/// The name of the folder in ~/Library: "Caches"; "~" for `homeFolder`.
std::string_view rawValue(AppDataKind kind);
/// What such a folder is called as a whole: "Cache".
std::string_view wholeFolderTitle(AppDataKind kind);
AppDataVerdict verdictOf(AppDataKind kind);
/// One sentence or two on what follows from its removal.
std::string_view explanationOf(AppDataKind kind);
/// True where an app works in the folder while it runs.
bool isInsideAppData(AppDataKind kind);

}  // namespace lumenary
