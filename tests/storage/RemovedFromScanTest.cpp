#include <gtest/gtest.h>

#include "storage/RemovedFromScan.h"
#include "support/JudgedHome.h"

namespace lumenary {
namespace {

using Folders = std::vector<FolderByteTotals::Folder>;

/// 100 bytes: /d/a holds the files 40 and 20, and 10 that aren't listed; /d/b a file of 30.
StorageScanResult madeScan() {
  StorageScanResult scan{
      .root = {.path = "/d", .isFolder = true},
      .scannedAt = {},
      .totalBytes = 100,
      .scannedItemCount = 9,
      .inaccessiblePaths = {"/d/closed"},
      .entries = {fileEntry("/d/a/x", 40), fileEntry("/d/b/z", 30), fileEntry("/d/a/in/y", 20)},
      .categoryByteTotals = CategoryTotals{{StorageCategory::unclassified, 95}},
      .folderByteTotals = FolderByteTotals({{"/d", 100}, {"/d/a", 70}, {"/d/a/in", 20}, {"/d/b", 30}})};
  for (FileEntry& entry : scan.entries) {
    entry.category = StorageCategory::unclassified;
  }
  return scan;
}

TEST(RemovedFromScan, NumbersFallOnceByWhatWent) {
  struct Case {
    const char* name;
    std::vector<RemovedItem> removed;
    std::int64_t total;
    std::int64_t unclassified;
    std::size_t entries;
    Folders folders;
  };
  const std::vector<Case> cases = {
      {"a file", {{"/d/a/x", 40}}, 60, 55, 2, {{"/d", 60}, {"/d/a", 30}, {"/d/a/in", 20}, {"/d/b", 30}}},
      {"a folder by its own total", {{"/d/a", 5}}, 30, 35, 1, {{"/d", 30}, {"/d/b", 30}}},
      {"what isn't listed", {{"/d/a/small", 10}}, 90, 95, 3, {{"/d", 90}, {"/d/a", 60}, {"/d/a/in", 20}, {"/d/b", 30}}},
      {"one in another", {{"/d/a/in", 20}, {"/d/a", 70}, {"/d/a/in/y", 20}}, 30, 35, 1, {{"/d", 30}, {"/d/b", 30}}},
      {"a name that only begins alike",
       {{"/d/a/i", 1}},
       99,
       95,
       3,
       {{"/d", 99}, {"/d/a", 69}, {"/d/a/in", 20}, {"/d/b", 30}}},
      {"more than there was", {{"/d/b/z", 500}}, 0, 65, 2, {{"/d", 0}, {"/d/a", 70}, {"/d/a/in", 20}, {"/d/b", 0}}},
  };
  for (const Case& tried : cases) {
    SCOPED_TRACE(tried.name);
    const StorageScanResult left = withoutRemoved(madeScan(), tried.removed);
    EXPECT_EQ(left.totalBytes, tried.total);
    EXPECT_EQ(left.categoryByteTotals->at(StorageCategory::unclassified), tried.unclassified);
    EXPECT_EQ(left.entries.size(), tried.entries);
    EXPECT_EQ(Folders(left.folderByteTotals->begin(), left.folderByteTotals->end()), tried.folders);
    EXPECT_EQ(left.scannedItemCount, 9);
    EXPECT_EQ(left.inaccessiblePaths, madeScan().inaccessiblePaths);
  }
}

TEST(RemovedFromScan, WhatWasNotMeasuredStaysSoAndTheTreeIsMadeAnew) {
  StorageScanResult scan = madeScan();
  scan.folderByteTotals.reset();
  scan.categoryByteTotals.reset();
  ASSERT_EQ(scan.children("/d/a").size(), 1U);
  const StorageScanResult left = withoutRemoved(scan, std::vector<RemovedItem>{{"/d/a/x", 40}});
  EXPECT_FALSE(left.folderByteTotals || left.categoryByteTotals);
  EXPECT_EQ(left.totalBytes, 60);
  EXPECT_EQ(left.children("/d/a").size(), 0U);
}

}  // namespace
}  // namespace lumenary
