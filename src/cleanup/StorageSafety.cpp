#include "cleanup/StorageSafety.h"

#include <algorithm>
#include <array>
#include <optional>

#include "base/Path.h"

namespace lumenary {
namespace {

using enum StorageSafety::Level;
using Verdict = CleanupCatalog::Verdict;

constexpr auto projectFiles = std::to_array<std::string_view>(
    {"package.json", "package-lock.json", "pnpm-lock.yaml", "yarn.lock", "Cargo.toml", "Package.swift", ".gitignore"});
constexpr auto sourceMarkers =
    std::to_array<std::string_view>({"package.json", "Package.swift", "Cargo.toml", "pyproject.toml", ".git"});
constexpr auto nextJsMarkers =
    std::to_array<std::string_view>({".next", "next.config.js", "next.config.mjs", "next.config.ts"});

constexpr std::string_view notRecognized = "Not recognized as disposable. Inspect it before removing anything.";

bool hasComponent(std::string_view path, std::string_view name) {
  while (!path.empty()) {
    const std::size_t end = std::min(path.find('/'), path.size());
    if (path.substr(0, end) == name) {
      return true;
    }
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return false;
}

/// A folder that a build or a package manager makes, told by its name and by what stands around it.
class GeneratedFolder {
 public:
  GeneratedFolder(std::string_view path, const StorageSafety::FileExists& exists) : path_(path), exists_(exists) {}

  std::optional<StorageSafety> classify() const {
    const std::string_view name = lastPathComponent(path_);
    const bool isPackage = hasBeside("package.json");
    if (name == "node_modules") {
      return isPackage ? StorageSafety{rebuild,
                                       "Dependencies, not source code. Stop the dev server and run your package "
                                       "manager's install command afterward."}
                       : StorageSafety{review, std::string(notRecognized)};
    }
    if ((name == ".next" || name == "dist" || name == "build") && isPackage) {
      return StorageSafety{rebuild,
                           "Generated build output. Stop the dev server and rebuild before running or deploying this "
                           "project."};
    }
    const auto isBeside = [&](std::string_view marker) { return hasBeside(marker); };
    if (name == "out" && isPackage && std::ranges::any_of(nextJsMarkers, isBeside)) {
      return StorageSafety{rebuild, "Next.js export output. Rebuild the export before serving or deploying it again."};
    }
    if (name == ".build" && hasBeside("Package.swift")) {
      return StorageSafety{rebuild, "Swift build output. Run swift build to recreate it."};
    }
    if ((name == "venv" || name == ".venv") && exists_(appendingPathComponent(path_, "pyvenv.cfg"))) {
      return StorageSafety{rebuild,
                           "Python environment. Recreate it and reinstall dependencies before running this project."};
    }
    return std::nullopt;
  }

 private:
  bool hasBeside(std::string_view name) const { return exists_(appendingPathComponent(parentPath(path_), name)); }

  std::string_view path_;
  const StorageSafety::FileExists& exists_;
};

StorageSafety byRule(const StorageNode& node, const CleanupCatalog::Rule* rule) {
  if (rule == nullptr || rule->title == nodeModulesTitle) {
    return {review, std::string(notRecognized)};
  }
  if (rule->verdict != Verdict::rebuildable) {
    return {review, rule->ifRemoved};
  }
  if (rule->title == installerTitle) {
    return {review, "Your downloaded installer. Confirm you no longer need it before removing it."};
  }
  return {node.path.contains("/Library/Developer/Xcode/DerivedData") ? rebuild : safe, rule->ifRemoved};
}

}  // namespace

StorageSafety StorageSafety::classify(const StorageNode& node, std::string_view home, const CleanupCatalog& catalog,
                                      const FileExists& fileExists, const CanMove& canMove) {
  const std::string_view name = lastPathComponent(node.path);
  if (hasComponent(node.path, ".git")) {
    return {keep, "Git history and branches. Removing this loses local repository history."};
  }
  if (!node.isFolder() && std::ranges::find(projectFiles, name) != projectFiles.end()) {
    return {keep, "Project configuration or a dependency lockfile. Keep it with your source code."};
  }
  const CleanupCatalog::Rule* const rule = catalog.match(node.path, home);
  if (rule != nullptr && rule->verdict == Verdict::keep) {
    return {keep, rule->ifRemoved};
  }
  if (!canMove(node.asEntry())) {
    return {keep, "Protected from direct removal. Inspect the contents or use the app that manages it."};
  }
  if (name != "node_modules" && hasComponent(node.path, "node_modules")) {
    return {keep, "Part of installed dependencies. Clear the whole node_modules folder in Clean, then reinstall."};
  }
  if (node.isFolder()) {
    if (auto generated = GeneratedFolder(node.path, fileExists).classify()) {
      return *std::move(generated);
    }
    const auto holds = [&](std::string_view marker) { return fileExists(appendingPathComponent(node.path, marker)); };
    if (std::ranges::any_of(sourceMarkers, holds)) {
      return {keep, "Contains project source or configuration. Review generated folders inside it instead."};
    }
  }
  return byRule(node, rule);
}

}  // namespace lumenary
