#pragma once

#include <span>
#include <string>

#include "cleanup/CleanupCatalog.h"

/// The catalog's table of places in the home folder, and the sentences that several rows share.
namespace lumenary {

struct CatalogRow {
  std::string prefix;  ///< in lower case, below the home folder
  CleanupCatalog::Rule rule;
};

/// In the order in which they are asked: the first that fits counts.
std::span<const CatalogRow> homeRules();

/// Sentences that take a name.
namespace rules {

CleanupCatalog::Rule browser(const std::string& name, const std::string& maker);
CleanupCatalog::Rule automationBrowser(const std::string& name);
CleanupCatalog::Rule appLogs(const std::string& name);
CleanupCatalog::Rule electronCache(const std::string& name);
CleanupCatalog::Rule agentHistory(const std::string& name);
CleanupCatalog::Rule packageCache(std::string title, std::string madeBy, std::string what);
/// A folder in which an app keeps its cache; an empty name where the app isn't known.
CleanupCatalog::Rule appCache(const std::string& name);

}  // namespace rules
}  // namespace lumenary
