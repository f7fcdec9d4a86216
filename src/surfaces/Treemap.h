#pragma once

#include <span>
#include <vector>

namespace lumenary {

struct Rectangle {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  bool operator==(const Rectangle&) const = default;
};

namespace Treemap {

/// Tiles whose areas follow the values, as square as rows along the shorter side make them (squarified treemap: Bruls,
/// Huizing and van Wijk, 2000). The values come in descending order; the tiles stand in theirs. Empty rectangles where
/// there is nothing to share out or no room.
std::vector<Rectangle> layout(std::span<const double> values, const Rectangle& bounds);

}  // namespace Treemap

}  // namespace lumenary
