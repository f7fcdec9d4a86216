#pragma once

#include <cstdint>
#include <expected>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Date.h"
#include "base/JsonReader.h"

namespace lumenary {

/// What one tidy did, in words for the person.
struct TidyReceipt {
  Date date;  ///< when it finished
  std::int64_t freedBytes = 0;
  std::vector<std::string> lines;
  bool automatic = false;  ///< not started by a person

  bool operator==(const TidyReceipt&) const = default;
};

/// An array, keys as the fields, dates as ISO 8601 text.
std::string encodeTidyLog(std::span<const TidyReceipt> receipts);
/// `malformed` also stands for JSON that isn't such a log.
std::expected<std::vector<TidyReceipt>, JsonDocument::Error> decodeTidyLog(std::string_view text);

}  // namespace lumenary
