#include "base/JsonReader.h"

#define SIMDJSON_EXCEPTIONS 0
#include <simdjson.h>

#include <bit>

#include "base/SimdjsonLibrary.h"

namespace lumenary {
namespace {

namespace dom = simdjson::dom;

constexpr std::size_t longestText = std::size_t{1} << 30;
// The library counts the level on which a value stands from one.
constexpr std::size_t deepestLevel = 64 + 1;

// A JsonValue is the library's own reference to an element, kept out of the header.
dom::element elementOf(const JsonValue& value) { return std::bit_cast<dom::element>(value); }
JsonValue valueOf(dom::element element) { return std::bit_cast<JsonValue>(element); }

template <class Type>
std::optional<Type> as(const JsonValue& value) {
  Type found{};
  return elementOf(value).get(found) == simdjson::SUCCESS ? std::optional(found) : std::nullopt;
}

JsonDocument::Error errorOf(simdjson::error_code error) {
  switch (error) {
    case simdjson::DEPTH_ERROR:
      return JsonDocument::Error::tooDeep;
    case simdjson::CAPACITY:
      return JsonDocument::Error::tooLarge;
    case simdjson::MEMALLOC:
      return JsonDocument::Error::unavailable;
    default:
      return JsonDocument::Error::malformed;
  }
}

simdjson::error_code parseInto(dom::document& document, std::string_view text) {
  // The library reads some bytes beyond the end, so it gets a copy with room behind it.
  const simdjson::padded_string padded(text);
  if (padded.data() == nullptr) {
    return simdjson::MEMALLOC;
  }
  dom::parser parser;
  const simdjson::error_code error = parser.allocate(text.size(), deepestLevel);
  return error != simdjson::SUCCESS ? error : parser.parse_into_document(document, padded).error();
}

}  // namespace

bool JsonValue::isNull() const { return elementOf(*this).is_null(); }
std::optional<std::string_view> JsonValue::string() const { return as<std::string_view>(*this); }
std::optional<std::int64_t> JsonValue::integer() const { return as<std::int64_t>(*this); }
std::optional<std::uint64_t> JsonValue::unsignedInteger() const { return as<std::uint64_t>(*this); }
std::optional<double> JsonValue::number() const { return as<double>(*this); }
std::optional<bool> JsonValue::boolean() const { return as<bool>(*this); }

std::optional<std::vector<JsonValue>> JsonValue::elements() const {
  const std::optional<dom::array> array = as<dom::array>(*this);
  if (!array) {
    return std::nullopt;
  }
  std::vector<JsonValue> values;
  values.reserve(array->size());
  for (const dom::element element : *array) {
    values.push_back(valueOf(element));
  }
  return values;
}

std::optional<std::vector<std::pair<std::string_view, JsonValue>>> JsonValue::members() const {
  const std::optional<dom::object> object = as<dom::object>(*this);
  if (!object) {
    return std::nullopt;
  }
  std::vector<std::pair<std::string_view, JsonValue>> members;
  members.reserve(object->size());
  for (const auto& [key, value] : *object) {
    members.emplace_back(key, valueOf(value));
  }
  return members;
}

std::optional<JsonValue> JsonValue::member(std::string_view key) const {
  const std::optional<dom::object> object = as<dom::object>(*this);
  dom::element found;
  if (!object || object->at_key(key).get(found) != simdjson::SUCCESS) {
    return std::nullopt;
  }
  return valueOf(found);
}

struct JsonDocument::Parsed {
  dom::document document;
};

std::expected<JsonDocument, JsonDocument::Error> JsonDocument::parse(std::string_view text) {
  if (text.size() > longestText) {
    return std::unexpected(Error::tooLarge);
  }
  if (!openSimdjsonLibrary()) {
    return std::unexpected(Error::unavailable);
  }
  auto parsed = std::make_unique<Parsed>();
  if (const simdjson::error_code error = parseInto(parsed->document, text); error != simdjson::SUCCESS) {
    return std::unexpected(errorOf(error));
  }
  return JsonDocument(std::move(parsed));
}

JsonDocument::JsonDocument(std::unique_ptr<Parsed> parsed) : parsed_(std::move(parsed)) {}
JsonDocument::JsonDocument(JsonDocument&&) noexcept = default;
JsonDocument& JsonDocument::operator=(JsonDocument&&) noexcept = default;
JsonDocument::~JsonDocument() = default;

JsonValue JsonDocument::root() const { return valueOf(parsed_->document.root()); }

}  // namespace lumenary
