#include "storage/TidyReceipt.h"

#include <utility>

#include "base/JsonWriter.h"
#include "base/Text.h"
#include "storage/JsonFields.h"

namespace lumenary {
namespace {

std::optional<TidyReceipt> decodeReceipt(const JsonValue& object) {
  const auto date = textOf(object, "date").and_then(parseISO8601);
  const auto freedBytes = object.member("freedBytes").and_then(&JsonValue::integer);
  auto lines = decodeAll(object, "lines", bytesOfText);
  const auto automatic = object.member("automatic").and_then(&JsonValue::boolean);
  if (!date || !freedBytes || !lines || !automatic) {
    return std::nullopt;
  }
  return TidyReceipt{.date = *date, .freedBytes = *freedBytes, .lines = *std::move(lines), .automatic = *automatic};
}

}  // namespace

std::string encodeTidyLog(std::span<const TidyReceipt> receipts) {
  JsonWriter json(JsonWriter::Layout::compact);
  json.beginArray();
  for (const TidyReceipt& receipt : receipts) {
    json.beginObject();
    json.key("date").string(iso8601(receipt.date));
    json.key("freedBytes").integer(receipt.freedBytes);
    json.key("lines").beginArray();
    for (const std::string& line : receipt.lines) {
      json.bytes(line);
    }
    json.endArray();
    json.key("automatic").boolean(receipt.automatic);
    json.endObject();
  }
  json.endArray();
  return json.take();
}

std::expected<std::vector<TidyReceipt>, JsonDocument::Error> decodeTidyLog(std::string_view text) {
  return decodeDocument(text, [](const JsonValue& root) { return decodeAll(root, decodeReceipt); });
}

}  // namespace lumenary
