#pragma once

namespace lumenary {

/// Of a drawing, y downwards.
struct Rectangle {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  bool operator==(const Rectangle&) const = default;
};

}  // namespace lumenary
