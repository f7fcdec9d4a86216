#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "cleanup/CleanupCatalog.h"

/// What stands where on Linux, beside the catalog's own table and asked after it. Spelling and case are exact.
namespace lumenary {

struct LinuxRow {
  /// Makes the rule for the app that the folder is named after.
  using Template = CleanupCatalog::Rule (*)(const std::string& name);

  /// "~/…" below the home folder, "/…" from the root, "**/…" at any depth. A "*" stands for any characters of one
  /// component, {a,b} for one of several texts. What lies inside of what fits, fits as well.
  std::string_view pattern;
  std::variant<CleanupCatalog::Rule, Template> rule;
};

/// In the order in which they are asked: the first that fits counts.
std::span<const LinuxRow> linuxRows();

/// What the table says of a path.
struct LinuxMatch {
  const LinuxRow* row = nullptr;  ///< the first that fits; null where none does
  std::string_view starred;       ///< the component of the path that its first "*" fitted
  /// What a row speaks of may lie inside the path. A folder goes as a whole: it can't be called rebuildable then.
  bool holdsReview = false;
  bool holdsKept = false;
};
LinuxMatch matchLinuxRows(std::string_view path, std::string_view home);

/// True where the thing must stay, or holds what must stay.
bool mustStayOnLinux(std::string_view path, std::string_view home);

CleanupCatalog::Verdict verdictOf(const LinuxRow& row);

}  // namespace lumenary
