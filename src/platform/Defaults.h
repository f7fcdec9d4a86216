#pragma once

#include <expected>
#include <optional>
#include <string>

namespace lumenary {

/// The person's settings, one small JSON object in a file that both faces read.
class Defaults {
 public:
  virtual ~Defaults() = default;
  /// No value for an absent key, one of another type, or a file that is missing or damaged. The error is the sentence
  /// of why nothing is known.
  virtual std::expected<std::optional<std::string>, std::string> string(const std::string& key) const = 0;
};

}  // namespace lumenary
