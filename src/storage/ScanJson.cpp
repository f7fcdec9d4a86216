#include "storage/ScanJson.h"

#include <cmath>
#include <utility>

#include "base/JsonWriter.h"
#include "base/Path.h"
#include "base/Text.h"
#include "storage/JsonFields.h"

namespace lumenary {
namespace {

/// Dates reach no further, in seconds since 1970 either way.
constexpr double endOfDates = 9'223'372'036'854;

void encodeDate(JsonWriter& json, Date date, DateForm form) {
  if (form == DateForm::iso8601) {
    json.string(iso8601(date));
  } else {
    json.number(std::chrono::duration<double>(date.time_since_epoch()).count());
  }
}

std::optional<Date> decodeDate(const JsonValue& value, DateForm form) {
  if (form == DateForm::iso8601) {
    return value.string().and_then(parseISO8601);
  }
  const std::optional<double> seconds = value.number();
  if (!seconds || std::abs(*seconds) >= endOfDates) {
    return std::nullopt;
  }
  return Date(std::chrono::round<Date::duration>(std::chrono::duration<double>(*seconds)));
}

std::optional<std::int64_t> byteCountOf(const JsonValue& value) {
  return value.integer().and_then([](std::int64_t bytes) { return bytes >= 0 ? std::optional(bytes) : std::nullopt; });
}

void encodeTotals(JsonWriter& json, const CategoryTotals& totals) {
  json.beginArray();
  for (const auto& [category, bytes] : totals) {
    json.string(rawValue(category)).integer(bytes);
  }
  json.endArray();
}

std::optional<CategoryTotals> decodeTotals(const JsonValue& value) {
  const auto elements = value.elements();
  if (!elements || elements->size() % 2 != 0) {
    return std::nullopt;
  }
  CategoryTotals totals;
  for (std::size_t index = 0; index < elements->size(); index += 2) {
    const auto category = (*elements)[index].string().and_then(storageCategoryOf);
    const auto bytes = byteCountOf((*elements)[index + 1]);
    if (!category || !bytes) {
      return std::nullopt;
    }
    totals[*category] = *bytes;
  }
  return totals;
}

std::optional<FolderByteTotals> decodeFolderTotals(const JsonValue& value) {
  const auto members = value.members();
  if (!members) {
    return std::nullopt;
  }
  std::vector<FolderByteTotals::Folder> folders;
  folders.reserve(members->size());
  for (const auto& [path, number] : *members) {
    const auto bytes = byteCountOf(number);
    std::string folder = bytesOfReversibleText(path);
    if (!bytes || !isStandard(folder) || folder.contains('\0')) {
      return std::nullopt;
    }
    folders.push_back({.path = std::move(folder), .bytes = *bytes});
  }
  return FolderByteTotals(std::move(folders));
}

void encodeEntry(JsonWriter& json, const FileEntry& entry, DateForm dates) {
  json.beginObject();
  json.key("id").string(entry.id.text());
  json.key("url").string(fileURLString(entry.url));
  json.key("name").bytes(entry.name);
  json.key("kind").string(rawValue(entry.kind));
  json.key("byteCount").integer(entry.byteCount);
  if (entry.modifiedAt) {
    json.key("modifiedAt");
    encodeDate(json, *entry.modifiedAt, dates);
  }
  json.key("category").string(rawValue(entry.category));
  json.endObject();
}

std::optional<FileEntry> decodeEntry(const JsonValue& object, DateForm dates) {
  const auto id = textOf(object, "id").and_then(UUID::parse);
  auto url = textOf(object, "url").and_then(parseFileURL);
  const auto name = textOf(object, "name");
  const auto kind = textOf(object, "kind").and_then(fileEntryKindOf);
  const auto byteCount = object.member("byteCount").and_then(byteCountOf);
  const auto category = textOf(object, "category").and_then(storageCategoryOf);
  const auto dateOf = [&](const JsonValue& value) { return decodeDate(value, dates); };
  std::optional<Date> modifiedAt;
  if (!id || !url || !name || !kind || !byteCount || !category ||
      !decodeOptional(object, "modifiedAt", modifiedAt, dateOf)) {
    return std::nullopt;
  }
  return FileEntry{.id = *id,
                   .url = *std::move(url),
                   .name = bytesOfReversibleText(*name),
                   .kind = *kind,
                   .byteCount = *byteCount,
                   .modifiedAt = modifiedAt,
                   .category = *category};
}

std::optional<StorageScanResult> decodeResult(const JsonValue& object, DateForm dates) {
  const auto dateOf = [&](const JsonValue& value) { return decodeDate(value, dates); };
  const auto entryOf = [&](const JsonValue& value) { return decodeEntry(value, dates); };
  auto root = textOf(object, "root").and_then(parseFileURL);
  const auto scannedAt = object.member("scannedAt").and_then(dateOf);
  const auto totalBytes = object.member("totalBytes").and_then(byteCountOf);
  const auto scannedItemCount = object.member("scannedItemCount").and_then(byteCountOf);
  auto inaccessiblePaths = decodeAll(object, "inaccessiblePaths", bytesOfText);
  auto entries = decodeAll(object, "entries", entryOf);
  if (!root || !scannedAt || !totalBytes || !scannedItemCount || !inaccessiblePaths || !entries) {
    return std::nullopt;
  }
  StorageScanResult result{.root = *std::move(root),
                           .scannedAt = *scannedAt,
                           .totalBytes = *totalBytes,
                           .scannedItemCount = *scannedItemCount,
                           .inaccessiblePaths = *std::move(inaccessiblePaths),
                           .entries = *std::move(entries),
                           .categoryByteTotals = {},
                           .folderByteTotals = {}};
  if (!decodeOptional(object, "categoryByteTotals", result.categoryByteTotals, decodeTotals) ||
      !decodeOptional(object, "folderByteTotals", result.folderByteTotals, decodeFolderTotals)) {
    return std::nullopt;
  }
  return result;
}

std::optional<ScanHistoryPoint> decodePoint(const JsonValue& object) {
  const auto date = textOf(object, "date").and_then(parseISO8601);
  const auto usedBytes = object.member("usedBytes").and_then(byteCountOf);
  auto categoryTotals = object.member("categoryTotals").and_then(decodeTotals);
  if (!date || !usedBytes || !categoryTotals) {
    return std::nullopt;
  }
  return ScanHistoryPoint{.date = *date, .usedBytes = *usedBytes, .categoryTotals = *std::move(categoryTotals)};
}

}  // namespace

std::string encodeScanResult(const StorageScanResult& result, DateForm dates) {
  constexpr std::size_t bytesOfEntry = 320;
  constexpr std::size_t bytesOfFolder = 96;
  const std::size_t folders = result.folderByteTotals ? result.folderByteTotals->size() : 0;
  JsonWriter json(JsonWriter::Layout::compact, (result.entries.size() * bytesOfEntry) + (folders * bytesOfFolder));
  json.beginObject();
  json.key("root").string(fileURLString(result.root));
  json.key("scannedAt");
  encodeDate(json, result.scannedAt, dates);
  json.key("totalBytes").integer(result.totalBytes);
  json.key("scannedItemCount").integer(result.scannedItemCount);
  json.key("inaccessiblePaths").beginArray();
  for (const std::string& path : result.inaccessiblePaths) {
    json.bytes(path);
  }
  json.endArray();
  json.key("entries").beginArray();
  for (const FileEntry& entry : result.entries) {
    encodeEntry(json, entry, dates);
  }
  json.endArray();
  if (result.categoryByteTotals) {
    json.key("categoryByteTotals");
    encodeTotals(json, *result.categoryByteTotals);
  }
  if (result.folderByteTotals) {
    json.key("folderByteTotals").beginObject();
    for (const auto& [path, bytes] : *result.folderByteTotals) {
      json.keyOfBytes(path).integer(bytes);
    }
    json.endObject();
  }
  json.endObject();
  return json.take();
}

std::expected<StorageScanResult, JsonDocument::Error> decodeScanResult(std::string_view text, DateForm dates) {
  return decodeDocument(text, [dates](const JsonValue& root) { return decodeResult(root, dates); });
}

std::string encodeScanHistory(std::span<const ScanHistoryPoint> points) {
  JsonWriter json(JsonWriter::Layout::compact);
  json.beginArray();
  for (const ScanHistoryPoint& point : points) {
    json.beginObject();
    json.key("date").string(iso8601(point.date));
    json.key("usedBytes").integer(point.usedBytes);
    json.key("categoryTotals");
    encodeTotals(json, point.categoryTotals);
    json.endObject();
  }
  json.endArray();
  return json.take();
}

std::expected<std::vector<ScanHistoryPoint>, JsonDocument::Error> decodeScanHistory(std::string_view text) {
  return decodeDocument(text, [](const JsonValue& root) { return decodeAll(root, decodePoint); });
}

}  // namespace lumenary
