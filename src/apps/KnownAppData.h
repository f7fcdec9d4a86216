#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "storage/AppDataVerdict.h"

namespace lumenary {

/// A known thing in a folder of an app.
struct AppDataPart {
  std::string path;  ///< below the folder; with a slash it takes only its own bytes out of what it stands in
  std::string title;
  std::string explanation;
  AppDataVerdict verdict = AppDataVerdict::keep;
};

/// An app of which it is known what its folders hold.
struct KnownAppData {
  std::set<std::string, std::less<>> bundleIDs;
  std::vector<AppDataPart> parts;  ///< the first one claims first
  /// What a folder in the home folder holds, by its name.
  std::map<std::string, std::vector<AppDataPart>> homeFolders{};
  /// Further names of its folders, where they are called after neither identifier nor program.
  std::vector<std::string> dataNames{};

  /// The product's own table.
  static std::span<const KnownAppData> catalog();
  /// What is known of Linux, where the identifiers are those of desktop entries, Flatpaks and snaps.
  static std::span<const KnownAppData> linuxCatalog();

  /// The first row of a table that names the identifier, case exact; null where none does.
  static const KnownAppData* forApp(std::string_view bundleID, std::span<const KnownAppData> table = catalog());

  /// The title of what an app builds again, by the name of its folder in lower case.
  static const std::map<std::string_view, std::string_view>& rebuildableFolderNames();

  /// The numbers of a name made of two, three or four of them with dots between; none for any other name.
  static std::optional<std::vector<std::int64_t>> version(std::string_view name);
};

}  // namespace lumenary
