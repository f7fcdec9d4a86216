#include <gtest/gtest.h>

#include "storage/StorageKind.h"
#include "storage/StorageNode.h"
#include "storage/StorageScanner.h"

namespace lumenary {

void PrintTo(StorageCategory category, std::ostream* out) { *out << rawValue(category); }
void PrintTo(StorageKind kind, std::ostream* out) { *out << rawValue(kind); }

namespace {

using enum StorageCategory;

TEST(StorageCategory, IsTheFirstRuleThatHolds) {
  const std::pair<const char*, StorageCategory> cases[] = {
      {"/Applications/Foo.app/Contents/MacOS/foo", applications},
      {"/home/anna/Tool.APP", applications},
      {"/home/anna/Tool.app/Contents", unclassified},  // only the thing's own extension counts
      {"/home/anna/.app", unclassified},
      {"/Users/a/Documents/project/node_modules", developer},
      {"/srv/.git/objects", developer},
      {"/Users/a/Library/Caches/x", caches},
      {"/Users/a/Documents/Caches", caches},
      {"/home/anna/DOWNLOADS/a", personal},
      {"/Users/a/Library/Pictures", personal},
      {"/Users/a/Library/Foo", system},
      {"/usr/share", system},
      {"/home/anna/.cache/x", caches},
      {"/home/anna/Videos/a", personal},
      {"/home/anna/documents2", unclassified},
      {"/", unclassified},
  };
  for (const auto& [path, category] : cases) {
    EXPECT_EQ(StorageScanner::category(path), category) << path;
  }
}

TEST(StorageKind, IsTheFirstRuleThatHolds) {
  using enum StorageKind;
  const std::pair<const char*, StorageKind> cases[] = {
      {"/Users/a/.Trash", trash},
      {"/Users/a/.trash/old.cache", trash},
      {"/Users/a/Library/Caches", cache},
      {"/home/anna/.cache/pip", cache},
      {"/home/anna/index.cache", cache},
      {"/p/node_modules/a/build", dependencies},
      {"/p/Pods", dependencies},
      {"/p/.venv", dependencies},
      {"/p/target", buildFiles},
      {"/p/DerivedData/x", buildFiles},
      {"/Applications/Foo.app/Contents/MacOS/foo", app},
      {"/Library/Application Support", StorageKind::system},
      {"/usr/lib", StorageKind::system},
      {"/Users/a/Library/Application Support/x", appData},
      {"/Users/a/Library", appData},
      {"/Users/a/Library/Foo", appData},
      {"/srv/Applications", app},
      {"/srv/.git/x", StorageKind::developer},
      {"/srv/Music/x", yourFiles},
      {"/opt/tool", StorageKind::developer},
      {"/Users/a/.config", StorageKind::developer},
      {"/Users/a/.local/x", yourFiles},
      {"/home/anna/letters", yourFiles},
      {"/root/x", yourFiles},
      {"/var/lib/x", StorageKind::system},
      {"/variety", other},
      {"/srv/x", other},
      {"/", other},
  };
  for (const auto& [path, kind] : cases) {
    EXPECT_EQ(storageKindOf(path, true), kind) << path;
  }
}

TEST(StorageNode, StandsAsAnEntryForAFolder) {
  const StorageNode folder{.path = "/home/anna/Music", .name = "Music", .byteCount = 7, .file = {}};
  const FileEntry entry = folder.asEntry();
  EXPECT_EQ(entry, (FileEntry{.id = entry.id,
                              .url = {.path = "/home/anna/Music", .isFolder = true},
                              .name = "Music",
                              .kind = FileEntry::Kind::directory,
                              .byteCount = 7,
                              .modifiedAt = {},
                              .category = personal}));
  EXPECT_NE(entry.id, folder.asEntry().id);
  const StorageNode file{.path = "/a", .name = "a", .byteCount = 7, .file = entry};
  EXPECT_EQ(file.asEntry(), entry);
}

}  // namespace
}  // namespace lumenary
