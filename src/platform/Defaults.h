#pragma once

#include <expected>
#include <optional>
#include <string>
#include <string_view>

#include "platform/SystemError.h"

namespace lumenary {

/// The person's settings, one small JSON object in a file that both faces read.
class Defaults {
 public:
  virtual ~Defaults() = default;
  /// No value for an absent key, one of another type, or a file that is missing or damaged. The error is the sentence
  /// of why nothing is known.
  virtual std::expected<std::optional<std::string>, std::string> string(const std::string& key) const = 0;
  /// On the disk when it returns; every other key keeps its value. Bytes of any kind.
  virtual SystemResult<void> setString(const std::string& key, std::string_view value) = 0;
};

}  // namespace lumenary
