#include <gtest/gtest.h>

#include <numeric>

#include "core/ClosetModel.h"
#include "core/WardrobeSnapshot.h"
#include "support/JudgedHome.h"

namespace lumenary {
namespace {

using Source = ClosetNode::Source;
using Titles = std::vector<std::string>;
using Folders = std::vector<FolderByteTotals::Folder>;

const VolumeSnapshot volume{.name = "Disk", .totalBytes = 10'000, .availableBytes = 4'000};

StorageScanResult scanOf(CategoryTotals totals, Folders folders, std::vector<FileEntry> entries = {}) {
  std::int64_t measured = 0;
  for (const auto& [category, bytes] : totals) {
    measured += bytes;
  }
  return {.root = {.path = "/", .isFolder = true},
          .scannedAt = {},
          .totalBytes = measured,
          .inaccessiblePaths = {},
          .entries = std::move(entries),
          .categoryByteTotals = std::move(totals),
          .folderByteTotals = FolderByteTotals(std::move(folders))};
}

Titles titlesOf(const std::vector<ClosetModel::Row>& rows) {
  Titles titles;
  for (const ClosetModel::Row& row : rows) {
    for (const ClosetModel::Placed& item : row.items) {
      titles.push_back(item.node.title + " " + std::to_string(item.node.bytes));
    }
  }
  return titles;
}

Titles titlesOf(const std::vector<ClosetNode>& nodes) {
  Titles titles;
  for (const ClosetNode& node : nodes) {
    titles.push_back(node.title + " " + std::to_string(node.bytes));
  }
  return titles;
}

struct Closet : testing::Test {
  JudgedHome home;

  ClosetModel model(const StorageScanResult& scan) const { return {scan, volume, home.gate}; }
  /// `count` apps of 10 each, and `others` of further bytes.
  static StorageScanResult scanOfApps(int count, std::int64_t others) {
    Folders folders{{"/", 10'000}, {"/Applications", count * 10 + others}, {"/Applications/Utilities", 5}};
    for (int app = 0; app < count; ++app) {
      folders.push_back({"/Applications/A" + std::to_string(app) + ".app", 10});
    }
    return scanOf({{StorageCategory::applications, count * 10 + others}}, folders);
  }
};

TEST_F(Closet, HangsTwelveAppsAndNamesTheRest) {
  const auto last = [&](int count, std::int64_t others) {
    return titlesOf(model(scanOfApps(count, others)).rails).back();
  };
  EXPECT_EQ(last(13, 0), "1 other apps 10");
  EXPECT_EQ(last(14, 7), "2 other apps 27");
  EXPECT_EQ(last(12, 0), "A9 10");
  EXPECT_EQ(last(2, 5), "Other app files 5");
  EXPECT_TRUE(titlesOf(model(scanOf({}, {{"/", 0}})).rails).empty());
}

TEST_F(Closet, LaysTheLargestFoldersOfEachKindAndWhatIsLeftOfIt) {
  const auto shelves = [&](const Folders& folders, std::int64_t total) {
    return titlesOf(model(scanOf({{StorageCategory::personal, total}}, folders)).shelves);
  };
  const std::string documents = "/home/anna/Documents";
  EXPECT_EQ(shelves({{"/home/anna", 1000}, {documents, 900}, {documents + "/a", 800}}, 1000),
            (Titles{"Documents 900", "More Your files 100"}))
      << "neither the home nor a folder in one that is shown";
  EXPECT_EQ(shelves({{documents, 950}}, 1000), Titles{"Documents 950"}) << "a twentieth isn't worth a box";
  EXPECT_EQ(shelves({{documents, 949}}, 1000), (Titles{"Documents 949", "More Your files 51"}));
  EXPECT_EQ(shelves({{documents, 19}}, 1000), Titles{"More Your files 1000"}) << "below a fiftieth";
  EXPECT_EQ(shelves({{documents, 3000}, {"/home/anna/Music", 2500}}, 1000), (Titles{"Documents 1000", "Music 0"}))
      << "never more than there is";
  EXPECT_EQ(shelves({}, 0), Titles{});
  const auto empty = model(scanOf({}, {}));
  EXPECT_EQ(empty.shelves.size(), 3U);
  EXPECT_EQ(empty.shelves[2].freeBytes, 4'000);
  EXPECT_EQ(empty.shelves[2].freeFraction, 1);
  EXPECT_EQ(empty.shelves[0].freeFraction, 0);
}

TEST_F(Closet, KeepsTheSystemTheCachesAndTheUnmeasuredApart) {
  const auto closet = model(scanOf({{StorageCategory::system, 700}, {StorageCategory::caches, 300}}, {{"/", 1000}}));
  EXPECT_EQ(closet.cabinet.bytes, 700);
  EXPECT_EQ(closet.cabinet.id, "category-System Data");
  EXPECT_EQ(closet.floor.title, "Caches on the floor");
  EXPECT_EQ(closet.sealed.bytes, 5'000);
  EXPECT_FALSE(closet.canOpen(closet.sealed));
  EXPECT_EQ(closet.sealed.verdict(home.gate), AppDataVerdict::keep);
  EXPECT_EQ(closet.floor.verdict(home.gate), AppDataVerdict::safe);
  EXPECT_EQ(titlesOf(closet.drawerRoot()), (Titles{"Temporary files 300", "macOS & app support 700"}));
  EXPECT_NE(closet.revisionID, model(scanOf({}, {})).revisionID);
}

TEST_F(Closet, SealsOnlyWhatTheScanDidNotMeasure) {
  StorageScanResult scan = scanOf({{StorageCategory::caches, 1000}}, {{"/", 1000}}, {fileEntry("/home/anna/x", 10)});
  scan.categoryByteTotals.reset();
  EXPECT_EQ(model(scan).sealed.bytes, 5'000) << "small files were measured even where no kind of theirs is known";
  scan.totalBytes = 7'000;
  EXPECT_EQ(model(scan).sealed.bytes, 0);
}

TEST_F(Closet, OpensFoldersAndKinds) {
  const std::string cache = "/home/anna/.cache";
  const auto closet =
      model(scanOf({{StorageCategory::caches, 120}}, {{cache, 100}, {cache + "/pip", 60}, {cache + "/yarn", 30}},
                   {fileEntry(cache + "/pip/big", 50)}));
  const ClosetNode& floor = closet.floor;
  ASSERT_TRUE(closet.canOpen(floor));
  const auto folders = closet.children(floor, 9);
  EXPECT_EQ(titlesOf(folders), (Titles{".cache 100", "Smaller items 20"}));
  EXPECT_EQ(folders[1].id, "category-Caches#rest");
  const auto tools = closet.children(folders[0], 1);
  EXPECT_EQ(titlesOf(tools), (Titles{"pip 60", "Smaller items 40"}));
  EXPECT_EQ(tools[1].id, cache + "#rest");
  EXPECT_FALSE(closet.canOpen(tools[1]));
  const auto files = closet.children(tools[0], 9);
  EXPECT_EQ(files[0].source, Source::file);
  EXPECT_TRUE(files[0].entry());
  EXPECT_FALSE(closet.canOpen(files[0]));
  EXPECT_EQ(tools[1].explanation(), "Many smaller items. Open the Browse view to see each one.");
  EXPECT_EQ(tools[0].explanation(), "Files apps can usually recreate");
}

TEST_F(Closet, RootsAreNeitherHomesNorAtTheTopNorInOneAnother) {
  std::vector<StorageNode> nodes;
  for (const char* const path : {"/Users/a", "/Applications", "/Users/a/Projects", "/Users/a/Projects/x", "/home/b",
                                 "/home/b/c", "/srv/data", "/tmp/small"}) {
    nodes.push_back({.path = path, .name = "x", .byteCount = std::string(path) == "/tmp/small" ? 1 : 10, .file = {}});
  }
  ClosetModel::Folders all;
  for (const StorageNode& node : nodes) {
    all.push_back(&node);
  }
  const auto paths = [&](std::size_t limit, std::int64_t minimum) {
    Titles found;
    for (const StorageNode* const node : ClosetModel::rootFolders(all, limit, minimum, "/home")) {
      found.push_back(node->path);
    }
    return found;
  };
  EXPECT_EQ(paths(9, 2), (Titles{"/Users/a/Projects", "/home/b/c", "/srv/data"}));
  EXPECT_EQ(paths(2, 2), (Titles{"/Users/a/Projects", "/home/b/c"}));
  EXPECT_EQ(paths(9, 0).back(), "/tmp/small");
}

TEST(ClosetLayout, PacksRowsOfLikeLengthThatMayOverrunALittle) {
  const auto packed = [](const std::vector<std::int64_t>& sizes, std::size_t rows, std::int64_t freeBytes) {
    std::vector<ClosetNode> nodes;
    for (const std::int64_t size : sizes) {
      nodes.push_back({.id = "x", .title = "x", .bytes = size});
    }
    return ClosetModel::pack(std::move(nodes), rows, freeBytes);
  };
  const auto counts = [](const std::vector<ClosetModel::Row>& rows) {
    std::vector<std::size_t> found;
    for (const auto& row : rows) {
      found.push_back(row.items.size());
    }
    return found;
  };
  EXPECT_EQ(counts(packed({60, 45, 50, 45}, 2, 0)), (std::vector<std::size_t>{2, 2})) << "105 of 100 still fit";
  EXPECT_EQ(counts(packed({60, 46, 50, 44}, 2, 0)), (std::vector<std::size_t>{1, 3})) << "106 don't";
  const auto huge = packed({500, 1}, 3, 0);
  EXPECT_DOUBLE_EQ(huge[0].items[0].fraction, 1);
  EXPECT_EQ(counts(huge), (std::vector<std::size_t>{1, 1, 0}));
  const auto withRoom = packed({10}, 1, 30);
  EXPECT_DOUBLE_EQ(withRoom[0].items[0].fraction, 0.25);
  EXPECT_DOUBLE_EQ(withRoom[0].freeFraction, 0.75);
  EXPECT_EQ(packed({}, 2, 0)[1].capacityBytes, 1);
}

TEST(ClosetLayout, EverySlotCanBeHitAndNothingIsLost) {
  const auto sum = [](const ClosetModel::Slots& slots) {
    return std::accumulate(slots.widths.begin(), slots.widths.end(), slots.freeShare);
  };
  struct Case {
    std::vector<std::int64_t> sizes;
    std::int64_t freeBytes;
    double minFraction;
  };
  for (const auto& [sizes, freeBytes, minFraction] : std::vector<Case>{{{100, 1, 1}, 0, 0.1},
                                                                       {{100, 50, 1}, 40, 0.2},
                                                                       {{1, 1}, 1'000'000, 0.1},
                                                                       {{0, -5, 10}, 0, 0.05},
                                                                       {{0, 0}, 0, 0.1},
                                                                       {{1, 2, 3, 4}, 5, 0.25},
                                                                       {{7}, 0, 0.5}}) {
    const auto slots = ClosetModel::railSlots(sizes, freeBytes, minFraction);
    EXPECT_NEAR(sum(slots), 1, 1e-12);
    EXPECT_GE(std::ranges::min(slots.widths), minFraction - 1e-12);
  }
  EXPECT_EQ(ClosetModel::railSlots({}, 1, 0.1).freeShare, 1);
  EXPECT_EQ(ClosetModel::railSlots({}, 0, 0.1).freeShare, 0);
  EXPECT_EQ(ClosetModel::railSlots(std::vector<std::int64_t>{5, 1}, 9, 0.5).widths, (std::vector<double>{0.5, 0.5}));
}

TEST(ClosetLayout, BoxesFillTheBoxBySize) {
  std::vector<ClosetNode> nodes;
  for (const std::int64_t size : {50, 25, 25, 0}) {
    nodes.push_back({.id = "x", .title = "x", .bytes = size});
  }
  const auto boxes = ClosetModel::slice(nodes, {0, 0, 101, 100});
  ASSERT_EQ(boxes.size(), 4U);
  double area = 0;
  for (const auto& [node, frame] : boxes) {
    area += frame.width * frame.height;
    EXPECT_GT(frame.width * frame.height, 0);
  }
  EXPECT_NEAR(area, 10'100, 1e-6);
  EXPECT_EQ(boxes[0].second, (Rectangle{0, 0, 50, 100}));
  EXPECT_TRUE(ClosetModel::slice({}, {0, 0, 1, 1}).empty());
}

TEST_F(Closet, TheWardrobeHasACompartmentForEverything) {
  StorageScanResult scan =
      scanOf({{StorageCategory::personal, 600}, {StorageCategory::unclassified, 400}}, {{"/", 1000}});
  for (int file = 0; file < 9; ++file) {
    scan.entries.push_back(fileEntry("/home/anna/Documents/" + std::to_string(file), 10));
  }
  scan.entries.push_back(fileEntry("/etc/passwd", 10));
  const WardrobeSnapshot wardrobe(scan, volume, home.gate);
  ASSERT_EQ(wardrobe.compartments.size(), 8U);
  const WardrobeCompartment& personal = wardrobe.compartments[2];
  EXPECT_EQ(personal.id(), "category-Personal Files");
  EXPECT_EQ(personal.topEntries.size(), 8U);
  EXPECT_EQ(personal.candidateBytes, 90);
  EXPECT_EQ(wardrobe.candidateBytes, 90) << "what may not go doesn't count";
  EXPECT_DOUBLE_EQ(personal.visualWeight, 0.06);
  EXPECT_EQ(wardrobe.unmeasuredBytes, 5'000);
  EXPECT_EQ(wardrobe.compartments[7].detail, "Space used by system data that the file scan could not attribute.");
  EXPECT_TRUE(wardrobe.isCompleteScan);
  scan.inaccessiblePaths = {"/root"};
  EXPECT_EQ(WardrobeSnapshot(scan, volume, home.gate).compartments[7].detail,
            "Some locations were unavailable during the scan.");
}

}  // namespace
}  // namespace lumenary
