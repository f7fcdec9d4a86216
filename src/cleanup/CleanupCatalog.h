#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/AppNames.h"

namespace lumenary {

/// What the program knows of places: what stands there, who made it, whether it may go and what follows. Whatever
/// explains an item asks here first. The words are for a person who doesn't know what a cache is.
class CleanupCatalog {
 public:
  enum class Verdict : std::uint8_t {
    rebuildable,  ///< comes back by itself
    review,       ///< a person should decide
    keep,         ///< must not be suggested
  };

  struct Rule {
    std::string title;   ///< the thing's short name
    std::string madeBy;  ///< who put it there
    std::string what;    ///< one sentence on what it is
    Verdict verdict = Verdict::review;
    std::string ifRemoved;                   ///< one sentence on what follows
    std::optional<std::string> betterWay{};  ///< to get the space, where there is one

    bool operator==(const Rule&) const = default;
  };

  /// `apps` must outlive the value. `downloads` is the person's folder for downloads where it isn't "~/Downloads", or
  /// empty.
  explicit CleanupCatalog(const AppNames& apps, std::string downloads = {})
      : apps_(apps), downloads_(std::move(downloads)) {}

  /// The rule for an absolute path, which needn't exist, and for the home folder in which it may lie; null where none
  /// is known. Asks `apps` only for folders of caches and of apps. The rule lives as long as the catalog. From any
  /// thread.
  const Rule* match(std::string_view path, std::string_view home) const;

 private:
  std::optional<std::string> appName(std::string_view folder) const;
  const Rule* named(std::string_view folder, Rule (*make)(const std::string& name)) const;

  const AppNames& apps_;
  std::string downloads_;
  mutable std::mutex lock_;
  /// The rules that carry an app's name, by the way they are made and by the folder's name.
  mutable std::map<std::pair<Rule (*)(const std::string&), std::string>, std::unique_ptr<const Rule>> named_;
};

/// "rebuildable", "review", "keep".
std::string_view rawValue(CleanupCatalog::Verdict verdict);

/// The title that the plan knows installers by.
inline constexpr std::string_view installerTitle = "Installer";
inline constexpr std::string_view nodeModulesTitle = "Project dependencies (node_modules)";

/// True for the extension of a file that installs an app, in any case: "dmg", "pkg", "iso", and on Linux "deb", "rpm".
bool isInstallerExtension(std::string_view extension);

}  // namespace lumenary
