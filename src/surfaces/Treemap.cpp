#include "surfaces/Treemap.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <numeric>

namespace lumenary::Treemap {
namespace {

/// Areas that stand side by side, known by their sum and their extremes alone: a tile more costs the same however many
/// there are.
struct Row {
  std::size_t count = 0;
  double sum = 0;
  double largest = 0;
  double smallest = 0;

  Row with(double area) const {
    return {.count = count + 1,
            .sum = sum + area,
            .largest = count == 0 ? area : std::max(largest, area),
            .smallest = count == 0 ? area : std::min(smallest, area)};
  }

  /// How far its least square tile is from a square; 1 is one.
  double worstRatio(double side) const {
    if (sum <= 0 || side <= 0 || smallest <= 0) {
      return std::numeric_limits<double>::infinity();
    }
    return std::max(side * side * largest / (sum * sum), sum * sum / (side * side * smallest));
  }
};

Row longestGoodRow(std::span<const double> areas, double side) {
  Row row;
  double worst = std::numeric_limits<double>::infinity();
  for (const double area : areas) {
    const Row longer = row.with(area);
    const double worstWithIt = longer.worstRatio(side);
    if (worstWithIt > worst) {
      break;
    }
    row = longer;
    worst = worstWithIt;
  }
  return row;
}

/// Places the row along the left or the top edge of `free` and takes its strip away from it.
void place(std::span<const double> areas, const Row& row, Rectangle& free, std::span<Rectangle> tiles) {
  constexpr double smallest = std::numeric_limits<double>::epsilon();
  const bool isColumn = free.height <= free.width;
  const double thickness = row.sum / (isColumn ? free.height : free.width);
  const double divisor = std::max(thickness, smallest);
  double offset = 0;
  for (std::size_t index = 0; index < row.count; ++index) {
    const double length = areas[index] / divisor;
    tiles[index] = isColumn ? Rectangle{free.x, free.y + offset, thickness, length}
                            : Rectangle{free.x + offset, free.y, length, thickness};
    offset += length;
  }
  if (isColumn) {
    free.x += thickness;
    free.width = std::max(0.0, free.width - thickness);
  } else {
    free.y += thickness;
    free.height = std::max(0.0, free.height - thickness);
  }
}

}  // namespace

std::vector<Rectangle> layout(std::span<const double> values, const Rectangle& bounds) {
  std::vector<Rectangle> tiles(values.size());
  const double total = std::accumulate(values.begin(), values.end(), 0.0);
  if (total <= 0 || bounds.width <= 0 || bounds.height <= 0) {
    return tiles;
  }
  std::vector<double> areas(values.begin(), values.end());
  for (double& area : areas) {
    area = area * bounds.width * bounds.height / total;
  }
  Rectangle free = bounds;
  for (std::size_t start = 0; start < areas.size();) {
    const auto rest = std::span<const double>(areas).subspan(start);
    const double side = std::min(free.width, free.height);
    if (side <= 0) {
      break;  // rounding has used the room up: what is left is too small to be seen
    }
    const Row row = longestGoodRow(rest, side);
    place(rest, row, free, std::span(tiles).subspan(start));
    start += row.count;
  }
  return tiles;
}

}  // namespace lumenary::Treemap
