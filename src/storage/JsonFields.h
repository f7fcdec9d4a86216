#pragma once

#include <algorithm>
#include <cstddef>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "base/JsonReader.h"
#include "base/Text.h"

/// How the records of this floor read their fields: what is missing or of another type has no value.
namespace lumenary {

inline std::optional<std::string_view> textOf(const JsonValue& object, std::string_view key) {
  return object.member(key).and_then(&JsonValue::string);
}

/// Every element of an array decoded, or no value where one of them can't be.
template <class Decode>
auto decodeAll(const JsonValue& array, Decode decode) {
  using Element = std::invoke_result_t<Decode, const JsonValue&>::value_type;
  std::optional<std::vector<Element>> elements;
  const auto values = array.elements();
  if (!values) {
    return elements;
  }
  elements.emplace();
  // Not for all of them: what is no record may be much shorter than one.
  elements->reserve(std::min(values->size(), std::size_t{1024}));
  for (const JsonValue& value : *values) {
    auto element = decode(value);
    if (!element) {
      return std::optional<std::vector<Element>>();
    }
    elements->push_back(*std::move(element));
  }
  return elements;
}

template <class Decode>
auto decodeAll(const JsonValue& object, std::string_view key, Decode decode) {
  const auto array = object.member(key);
  return array ? decodeAll(*array, decode) : decltype(decodeAll(object, decode))();
}

/// The bytes behind a text that `reversibleText` wrote.
inline std::optional<std::string> bytesOfText(const JsonValue& value) {
  return value.string().transform(bytesOfReversibleText);
}

/// A whole text decoded. `malformed` also stands for JSON in which `decode` finds no value.
template <class Decode>
auto decodeDocument(std::string_view text, Decode decode) {
  using Value = std::invoke_result_t<Decode, const JsonValue&>::value_type;
  using Result = std::expected<Value, JsonDocument::Error>;
  const auto document = JsonDocument::parse(text);
  if (!document) {
    return Result(std::unexpect, document.error());
  }
  auto value = decode(document->root());
  return value ? Result(*std::move(value)) : Result(std::unexpect, JsonDocument::Error::malformed);
}

/// False where the member is there, isn't null, and can't be decoded.
template <class Value, class Decode>
bool decodeOptional(const JsonValue& object, std::string_view key, std::optional<Value>& field, Decode decode) {
  const auto value = object.member(key);
  if (!value || value->isNull()) {
    return true;
  }
  field = decode(*value);
  return field.has_value();
}

}  // namespace lumenary
