#include "storage/CleanupTransaction.h"

#include <array>
#include <utility>

#include "base/CheckedSum.h"
#include "base/EnumText.h"
#include "base/JsonWriter.h"
#include "base/Text.h"
#include "storage/JsonFields.h"

namespace lumenary {
namespace {

using Source = CleanupTransaction::Source;
using Item = CleanupTransaction::Item;
using Outcome = Item::Outcome;

constexpr std::array<std::string_view, 4> sourceTexts = {"storage", "tidy", "buildCleanup", "apps"};
constexpr std::array<std::string_view, 4> outcomeTexts = {"movedToTrash", "failed", "restored", "emptied"};

std::optional<Outcome> outcomeOf(std::string_view text) { return enumOf<Outcome>(outcomeTexts, text); }

void encodeItem(JsonWriter& json, const Item& item) {
  json.beginObject();
  json.key("id").string(item.id.text());
  json.key("measuredBytes").integer(item.measuredBytes);
  json.key("message").bytes(item.message);
  json.key("originalURL").string(fileURLString(item.originalURL));
  json.key("outcome").string(rawValue(item.outcome));
  json.key("ruleID").bytes(item.ruleID);
  json.key("ruleVersion").bytes(item.ruleVersion);
  if (item.trashURL) {
    json.key("trashURL").string(fileURLString(*item.trashURL));
  }
  json.endObject();
}

std::optional<Item> decodeItem(const JsonValue& object) {
  const auto id = textOf(object, "id").and_then(UUID::parse);
  const auto measuredBytes = object.member("measuredBytes").and_then(&JsonValue::integer);
  const auto message = textOf(object, "message");
  auto originalURL = textOf(object, "originalURL").and_then(parseFileURL);
  const auto outcome = textOf(object, "outcome").and_then(outcomeOf);
  const auto ruleID = textOf(object, "ruleID");
  const auto ruleVersion = textOf(object, "ruleVersion");
  if (!id || !measuredBytes || !message || !originalURL || !outcome || !ruleID || !ruleVersion) {
    return std::nullopt;
  }
  std::optional<FileURL> trashURL;
  const auto urlOf = [](const JsonValue& value) { return value.string().and_then(parseFileURL); };
  if (!decodeOptional(object, "trashURL", trashURL, urlOf)) {
    return std::nullopt;
  }
  return Item{.id = *id,
              .originalURL = *std::move(originalURL),
              .trashURL = std::move(trashURL),
              .measuredBytes = *measuredBytes,
              .ruleID = bytesOfReversibleText(*ruleID),
              .ruleVersion = bytesOfReversibleText(*ruleVersion),
              .outcome = *outcome,
              .message = bytesOfReversibleText(*message)};
}

std::optional<CleanupTransaction> decodeTransaction(const JsonValue& object) {
  const auto id = textOf(object, "id").and_then(UUID::parse);
  auto items = decodeAll(object, "items", decodeItem);
  const auto source = textOf(object, "source").and_then(sourceOf);
  const auto timestamp = textOf(object, "timestamp").and_then(parseISO8601);
  if (!id || !items || !source || !timestamp) {
    return std::nullopt;
  }
  return CleanupTransaction{.id = *id, .timestamp = *timestamp, .source = *source, .items = *std::move(items)};
}

}  // namespace

void CleanupTransaction::Item::markRestored() {
  outcome = Outcome::restored;
  trashURL.reset();
  message = "Restored";
}

std::int64_t CleanupTransaction::movedBytes() const {
  std::int64_t sum = 0;
  for (const Item& item : items) {
    if (item.outcome == Item::Outcome::movedToTrash) {
      sum = checkedSum(sum, item.measuredBytes);
    }
  }
  return sum;
}

CleanupTransaction CleanupTransaction::merging(std::span<const CleanupTransaction> transactions, Date now) {
  CleanupTransaction merged{.id = UUID::random(), .timestamp = now, .source = Source::tidy, .items = {}};
  for (const CleanupTransaction& transaction : transactions) {
    merged.items.insert(merged.items.end(), transaction.items.begin(), transaction.items.end());
  }
  return merged;
}

std::string_view rawValue(CleanupTransaction::Source source) {
  return sourceTexts.at(static_cast<std::size_t>(source));
}

std::string_view rawValue(CleanupTransaction::Item::Outcome outcome) {
  return outcomeTexts.at(static_cast<std::size_t>(outcome));
}

std::optional<CleanupTransaction::Source> sourceOf(std::string_view rawValue) {
  return enumOf<Source>(sourceTexts, rawValue);
}

std::string encodeCleanupTransactions(std::span<const CleanupTransaction> transactions) {
  JsonWriter json(JsonWriter::Layout::pretty);
  json.beginArray();
  for (const CleanupTransaction& transaction : transactions) {
    json.beginObject();
    json.key("id").string(transaction.id.text());
    json.key("items").beginArray();
    for (const Item& item : transaction.items) {
      encodeItem(json, item);
    }
    json.endArray();
    json.key("source").string(rawValue(transaction.source));
    json.key("timestamp").string(iso8601(transaction.timestamp));
    json.endObject();
  }
  json.endArray();
  return json.take() + "\n";
}

std::expected<std::vector<CleanupTransaction>, JsonDocument::Error> decodeCleanupTransactions(std::string_view text) {
  return decodeDocument(text, [](const JsonValue& root) { return decodeAll(root, decodeTransaction); });
}

}  // namespace lumenary
