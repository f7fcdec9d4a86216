#pragma once

#include <span>
#include <string_view>

#include "storage/AppDataVerdict.h"

/// Where systems keep what no person put there.
namespace lumenary {

struct SystemPlace {
  std::string_view path;  ///< "~/…" below the home folder; else absolute
  std::string_view title;
  std::string_view explanation;  ///< "{release}" stands for the running kernel's
  AppDataVerdict verdict = AppDataVerdict::keep;
};

/// The product's own table.
std::span<const SystemPlace> systemPlaces();
/// What Linux has beside it. Each explanation names the command that frees the space, where there is one.
std::span<const SystemPlace> linuxSystemPlaces();

}  // namespace lumenary
