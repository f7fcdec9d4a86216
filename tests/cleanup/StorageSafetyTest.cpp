#include <gtest/gtest.h>

#include <set>

#include "cleanup/StorageSafety.h"
#include "support/JudgedHome.h"

namespace lumenary {
namespace {

using enum StorageSafety::Level;

/// A path, a folder where it ends in a slash, judged on a disk that holds `standing`.
StorageSafety judge(std::string path, const std::set<std::string>& standing = {}, bool canMove = true) {
  const JudgedHome home;
  path = home.at(path);
  const bool isFolder = path.ends_with('/');
  if (isFolder) {
    path.pop_back();
  }
  StorageNode node{.path = path, .name = std::string(lastPathComponent(path)), .byteCount = 1, .file = {}};
  if (!isFolder) {
    node.file = fileEntry(path);
  }
  return StorageSafety::classify(
      node, home.places.home, home.catalog,
      [&](const std::string& asked) {
        return standing.contains(asked.starts_with(home.places.home) ? "~" + asked.substr(home.places.home.size())
                                                                     : asked);
      },
      [&](const FileEntry&) { return canMove; });
}

TEST(StorageSafety, SortsIntoFourLevels) {
  struct Case {
    std::string path;
    std::set<std::string> standing;
    StorageSafety::Level level;
    std::string reason;
  };
  const std::string unknown = "Not recognized as disposable. Inspect it before removing anything.";
  const std::string output =
      "Generated build output. Stop the dev server and rebuild before running or deploying this project.";
  const std::string source = "Contains project source or configuration. Review generated folders inside it instead.";
  const std::vector<Case> cases = {
      {"~/.cache/foo/.git/", {}, keep, "Git history and branches. Removing this loses local repository history."},
      {"~/p/package.json", {}, keep, "Project configuration or a dependency lockfile. Keep it with your source code."},
      {"~/p/package.json/", {}, review, unknown},
      {"~/.trash/x", {}, keep, "Empty the Trash to get the space back."},
      {"~/p/node_modules/a/",
       {},
       keep,
       "Part of installed dependencies. Clear the whole node_modules folder in Clean, then reinstall."},
      {"~/p/node_modules/",
       {"~/p/package.json"},
       rebuild,
       "Dependencies, not source code. Stop the dev server and run your package manager's install command afterward."},
      {"~/p/node_modules/", {}, review, unknown},
      {"~/p/node_modules/", {"~/p/node_modules/package.json"}, review, unknown},
      {"~/p/dist/", {"~/p/package.json"}, rebuild, output},
      {"~/p/.next/", {"~/p/package.json"}, rebuild, output},
      {"~/p/build/", {"~/p/package.json"}, rebuild, output},
      {"~/p/build/", {}, review, unknown},
      {"~/p/build/", {"~/p/build/Cargo.toml"}, keep, source},
      {"~/p/out/",
       {"~/p/package.json", "~/p/next.config.mjs"},
       rebuild,
       "Next.js export output. Rebuild the export before serving or deploying it again."},
      {"~/p/out/", {"~/p/package.json"}, review, unknown},
      {"~/p/.build/", {"~/p/Package.swift"}, rebuild, "Swift build output. Run swift build to recreate it."},
      {"~/p/venv/",
       {"~/p/venv/pyvenv.cfg"},
       rebuild,
       "Python environment. Recreate it and reinstall dependencies before running this project."},
      {"~/p/", {"~/p/.git"}, keep, source},
      {"~/Library/Caches/Yarn/", {}, safe, "Downloaded again the next time a project needs it."},
      {"~/Library/Developer/Xcode/DerivedData/App-abc/",
       {},
       rebuild,
       "Xcode rebuilds them on the next build, which takes a little longer."},
      {"~/Downloads/a.dmg", {}, review, "Your downloaded installer. Confirm you no longer need it before removing it."},
      {"~/.codex/sessions/", {}, review, "You can't resume or look back at those sessions."},
      {"~/.cache/thumbnails/", {}, safe, "Made again as you look at folders."},
      {"~/photo.jpg", {}, review, unknown},
  };
  for (const auto& [path, standing, level, reason] : cases) {
    EXPECT_EQ(judge(path, standing), (StorageSafety{level, reason})) << path;
  }
  EXPECT_EQ(
      judge("~/Library/Mail/", {}, false),
      (StorageSafety{keep, "Protected from direct removal. Inspect the contents or use the app that manages it."}));
}

}  // namespace
}  // namespace lumenary
