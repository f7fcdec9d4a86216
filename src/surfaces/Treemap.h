#pragma once

#include <span>
#include <vector>

#include "base/Rectangle.h"

namespace lumenary::Treemap {

/// Tiles whose areas follow the values, as square as rows along the shorter side make them (squarified treemap: Bruls,
/// Huizing and van Wijk, 2000). The values come in descending order; the tiles stand in theirs. Empty rectangles where
/// there is nothing to share out or no room.
std::vector<Rectangle> layout(std::span<const double> values, const Rectangle& bounds);

}  // namespace lumenary::Treemap
