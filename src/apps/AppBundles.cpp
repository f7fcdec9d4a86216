#include "apps/AppBundles.h"

#include <cstddef>
#include <set>
#include <string_view>
#include <utility>

#include "base/Path.h"
#include "base/PropertyList.h"

namespace lumenary {
namespace {

constexpr std::string_view bundleExtension = ".app";
constexpr std::size_t infoByteLimit = std::size_t{1} << 20;

std::optional<std::string> textAt(const PropertyListValue::Dictionary& info, std::string_view key) {
  const PropertyListValue* const value = valueAt(info, key);
  const std::string* const text = value == nullptr ? nullptr : value->text();
  return text == nullptr ? std::nullopt : std::optional(*text);
}

}  // namespace

std::optional<FoundBundle> bundle(AppFolders& folders, DurableFiles& files, const std::string& path) {
  const auto text = files.read(path + "/Contents/Info.plist", infoByteLimit);
  const auto list = text ? parsePropertyList(*text) : std::nullopt;
  const auto* const info = list ? list->dictionary() : nullptr;
  auto identifier = info == nullptr ? std::nullopt : textAt(*info, "CFBundleIdentifier");
  if (!identifier) {
    return std::nullopt;
  }
  std::string fileName(lastPathComponent(path));
  if (const std::size_t extension = pathExtension(fileName).size(); extension > 0) {
    fileName.resize(fileName.size() - extension - 1);
  }
  FoundBundle found{.url = {.path = path, .isFolder = folders.isFolder(path)},
                    .name = textAt(*info, "CFBundleDisplayName").value_or(fileName),
                    .bundleID = *std::move(identifier),
                    .version = textAt(*info, "CFBundleShortVersionString")};
  found.folderNames = {found.name, std::move(fileName)};
  found.vendorNames = {found.name};
  found.ownPaths = {path};
  return found;
}

std::vector<FoundBundle> installedBundles(AppFolders& folders, DurableFiles& files,
                                          const std::vector<std::string>& applicationFolders) {
  std::vector<FoundBundle> bundles;
  std::set<std::string> seen;
  const auto add = [&](const std::string& path) {
    auto found = bundle(folders, files, path);
    if (found && seen.insert(found->bundleID).second) {
      bundles.push_back(*std::move(found));
    }
  };
  for (const std::string& folder : applicationFolders) {
    for (const AppFolders::Entry& entry : folders.entriesOrNone(folder, LinkPolicy::follow)) {
      const std::string path = appendingPathComponent(folder, entry.name);
      if (entry.name.ends_with(bundleExtension)) {
        add(path);
      } else if (entry.kind == FileKind::folder || entry.kind == FileKind::link) {
        for (const AppFolders::Entry& inner : folders.entriesOrNone(path, LinkPolicy::follow)) {
          if (inner.name.ends_with(bundleExtension)) {
            add(appendingPathComponent(path, inner.name));
          }
        }
      }
    }
  }
  return bundles;
}

}  // namespace lumenary
