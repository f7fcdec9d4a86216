#pragma once

#include <cstdint>
#include <expected>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/JsonReader.h"
#include "storage/ScanHistoryPoint.h"
#include "storage/StorageScanResult.h"

/// The scan's records as JSON without white space. Keys are the fields' names, ids stand in upper case, URLs as file
/// URL text; an absent option is left out; a map by category is an array of category and number in turn. Paths and
/// names are written by `reversibleText`. When reading, every key but an option's must be there, and no byte count may
/// be negative: a text that breaks a rule anywhere has no value as a whole.
namespace lumenary {

enum class DateForm : std::uint8_t {
  iso8601,           ///< text, whole seconds
  secondsSince1970,  ///< a number, to the microsecond
};

std::string encodeScanResult(const StorageScanResult& result, DateForm dates);
/// `malformed` also stands for JSON that isn't a result.
std::expected<StorageScanResult, JsonDocument::Error> decodeScanResult(std::string_view text, DateForm dates);

/// Dates as ISO 8601 text.
std::string encodeScanHistory(std::span<const ScanHistoryPoint> points);
std::expected<std::vector<ScanHistoryPoint>, JsonDocument::Error> decodeScanHistory(std::string_view text);

}  // namespace lumenary
