#pragma once

#include <string_view>

namespace lumenary {

/// The two outputs of the command.
class Terminal {
 public:
  virtual ~Terminal() = default;
  /// Data. False where it could not be written.
  virtual bool writeOutput(std::string_view text) = 0;
  /// Everything else.
  virtual void writeError(std::string_view text) = 0;
  /// True where a line of progress may be drawn on the error output: a terminal that can clear a line, and no NO_COLOR.
  virtual bool showsProgress() const = 0;
};

}  // namespace lumenary
