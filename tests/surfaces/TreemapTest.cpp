#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

#include "surfaces/StorageMapTiles.h"
#include "surfaces/Treemap.h"

namespace lumenary {
namespace {

double area(const Rectangle& tile) { return tile.width * tile.height; }

TEST(Treemap, GivesTheWholeRectangleToOneValueAndQuartersToFourEqualOnes) {
  const Rectangle bounds{10, 20, 400, 400};
  EXPECT_EQ(Treemap::layout(std::vector{7.0}, bounds), std::vector{bounds});
  EXPECT_EQ(
      Treemap::layout(std::vector{1.0, 1.0, 1.0, 1.0}, bounds),
      (std::vector<Rectangle>{{10, 20, 200, 200}, {10, 220, 200, 200}, {210, 20, 200, 200}, {210, 220, 200, 200}}));
}

TEST(Treemap, LaysOutTheKnownExample) {
  // The example of the paper: values 6 6 4 3 2 2 1 in six by four.
  const auto tiles = Treemap::layout(std::vector<double>{6, 6, 4, 3, 2, 2, 1}, {0, 0, 6, 4});
  const Rectangle expected[] = {{0, 0, 3, 2},
                                {0, 2, 3, 2},
                                {3, 0, 12.0 / 7, 7.0 / 3},
                                {3 + 12.0 / 7, 0, 9.0 / 7, 7.0 / 3},
                                {3, 7.0 / 3, 1.2, 5.0 / 3}};
  for (std::size_t index = 0; index < std::size(expected); ++index) {
    EXPECT_NEAR(tiles[index].x, expected[index].x, 1e-9) << index;
    EXPECT_NEAR(tiles[index].y, expected[index].y, 1e-9) << index;
    EXPECT_NEAR(tiles[index].width, expected[index].width, 1e-9) << index;
    EXPECT_NEAR(tiles[index].height, expected[index].height, 1e-9) << index;
  }
}

TEST(Treemap, GivesNothingWhereThereIsNothingToShareOut) {
  const Rectangle nowhere;
  EXPECT_TRUE(Treemap::layout({}, {0, 0, 1, 1}).empty());
  EXPECT_EQ(Treemap::layout(std::vector{0.0, 0.0}, {0, 0, 9, 9}), (std::vector{nowhere, nowhere}));
  for (const Rectangle& empty : {Rectangle{5, 5, 0, 9}, Rectangle{5, 5, 9, 0}, Rectangle{5, 5, -1, 9}}) {
    EXPECT_EQ(Treemap::layout(std::vector{1.0}, empty), std::vector{nowhere});
  }
}

TEST(Treemap, CoversTheBoundsByTheValuesWithoutOverlap) {
  const Rectangle bounds{3, 4, 640, 217};
  std::vector<double> steep;
  for (double value = 1e15; steep.size() < 60; value /= 2) {
    steep.push_back(value);
  }
  steep.push_back(0);
  const std::vector<double> flat(5'000, 3.0);
  for (const auto& values : {steep, flat, std::vector<double>{1, 5, 2, 9}}) {
    const auto tiles = Treemap::layout(values, bounds);
    const double total = std::accumulate(values.begin(), values.end(), 0.0);
    double covered = 0;
    for (std::size_t index = 0; index < tiles.size(); ++index) {
      const Rectangle& tile = tiles[index];
      EXPECT_NEAR(area(tile), values[index] / total * area(bounds), 1e-6);
      EXPECT_TRUE(tile.x >= bounds.x - 1e-6 && tile.x + tile.width <= bounds.x + bounds.width + 1e-6) << index;
      EXPECT_TRUE(tile.y >= bounds.y - 1e-6 && tile.y + tile.height <= bounds.y + bounds.height + 1e-6) << index;
      covered += area(tile);
    }
    EXPECT_NEAR(covered, area(bounds), 1e-6);
  }
}

constexpr std::int64_t mebibyte = 1'048'576;
constexpr std::int64_t gigabyte = 1'000'000'000;

class StorageMapTiles : public testing::Test {
 protected:
  StorageScanResult resultOf(std::int64_t total, std::vector<std::int64_t> files) {
    StorageScanResult result{.root = {.path = "/r", .isFolder = true},
                             .scannedAt = {},
                             .totalBytes = total,
                             .inaccessiblePaths = {},
                             .entries = {},
                             .categoryByteTotals = {},
                             .folderByteTotals = FolderByteTotals({{"/r", total}, {"/r/caches", 0}})};
    for (const std::int64_t bytes : files) {
      const std::string name = "f" + std::to_string(result.entries.size());
      result.entries.push_back(
          {.id = {}, .url = {.path = "/r/" + name}, .name = name, .byteCount = bytes, .modifiedAt = {}});
    }
    return result;
  }
  /// Titles and bytes of the tiles behind the first `skipped`.
  std::vector<std::pair<std::string, std::int64_t>> tilesOf(const StorageScanResult& result, std::size_t skipped,
                                                            std::string drive = "",
                                                            std::optional<VolumeSnapshot> snapshot = {}) {
    std::vector<std::pair<std::string, std::int64_t>> found;
    for (const auto& tile : StorageMapView::tiles({result, "/r", std::move(drive), std::move(snapshot)})) {
      found.emplace_back(tile.title, tile.bytes);
    }
    found.erase(found.begin(), found.begin() + static_cast<std::ptrdiff_t>(std::min(skipped, found.size())));
    return found;
  }
  using Tiles = std::vector<std::pair<std::string, std::int64_t>>;
};

TEST_F(StorageMapTiles, AreTheLargestChildrenAndTheRestWhereItMatters) {
  const std::vector<std::int64_t> twentyThree(23, 10 * mebibyte);
  std::vector<std::int64_t> twentyFive(25, 10 * mebibyte);
  // With the folder "caches" there are 24 and 26 children.
  EXPECT_EQ(tilesOf(resultOf(231 * mebibyte, twentyThree), 24), Tiles{}) << "1 MiB is not above the threshold";
  EXPECT_EQ(tilesOf(resultOf(233 * mebibyte, twentyThree), 24), (Tiles{{"Smaller files", 3 * mebibyte}}));
  EXPECT_EQ(tilesOf(resultOf(250 * mebibyte, twentyFive), 24), (Tiles{{"2 more items", 10 * mebibyte}}));
  twentyFive.pop_back();
  EXPECT_EQ(tilesOf(resultOf(245 * mebibyte, twentyFive), 24), (Tiles{{"1 more items", 5 * mebibyte}}));
  EXPECT_EQ(tilesOf(resultOf(200 * mebibyte, {198 * mebibyte + mebibyte / 2}), 2), Tiles{}) << "2 MiB is 1 %";

  const StorageScanResult result = resultOf(2 * mebibyte, {2 * mebibyte});
  const auto tiles = StorageMapView::tiles({result, "/r", "", {}});
  ASSERT_EQ(tiles.size(), 2U);
  EXPECT_EQ(tiles[0].id, "/r/f0");
  EXPECT_EQ(tiles[1].kind, StorageKind::cache);
  EXPECT_TRUE(tiles[1].node && tiles[1].node->isFolder());
}

TEST_F(StorageMapTiles, TellWhatNobodyMeasuredOfTheSelectedDrive) {
  const auto snapshot = [](std::int64_t used) { return VolumeSnapshot{"Disk", 500 * gigabyte, 500 * gigabyte - used}; };
  const StorageScanResult result = resultOf(98 * gigabyte, {98 * gigabyte});
  EXPECT_EQ(tilesOf(result, 2, "/r", snapshot(100 * gigabyte)), (Tiles{{"System & unreadable", 2 * gigabyte}}));
  EXPECT_EQ(tilesOf(result, 2, "/r", snapshot(98'500'000'000)), Tiles{});
  EXPECT_EQ(tilesOf(result, 2, "/r", snapshot(98 * gigabyte + 1'073'741'824)), Tiles{});
  EXPECT_EQ(tilesOf(result, 2, "/r", snapshot(50 * gigabyte)), Tiles{});
  EXPECT_EQ(tilesOf(result, 2, "/", snapshot(400 * gigabyte)), Tiles{}) << "another drive is selected";
  EXPECT_EQ(tilesOf(result, 2, "/r"), Tiles{});
  EXPECT_EQ(StorageMapView::unmeasuredBytes({result, "/r/caches", "/r", snapshot(400 * gigabyte)}), 0);
  const StorageScanResult huge = resultOf(396 * gigabyte, {});
  EXPECT_EQ(StorageMapView::unmeasuredBytes({huge, "/r", "/r", snapshot(398 * gigabyte)}), 2 * gigabyte);
  EXPECT_EQ(StorageMapView::unmeasuredBytes({huge, "/r", "/r", snapshot(397'900'000'000)}), 0) << "half a per cent";
}

}  // namespace
}  // namespace lumenary
