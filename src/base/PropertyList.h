#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace lumenary {

/// A value of a property list. Fractions, dates and data are kept as the text that stands in the file.
class PropertyListValue {
 public:
  using Array = std::vector<PropertyListValue>;
  using Dictionary = std::map<std::string, PropertyListValue, std::less<>>;
  struct Opaque {
    std::string text;
    bool operator==(const Opaque&) const = default;
  };

  PropertyListValue() = default;
  template <class Value>
  explicit PropertyListValue(Value value) : value_(std::move(value)) {}

  /// Null where the value is of another type.
  const std::string* text() const { return std::get_if<std::string>(&value_); }
  const bool* boolean() const { return std::get_if<bool>(&value_); }
  const std::int64_t* integer() const { return std::get_if<std::int64_t>(&value_); }
  const Array* array() const { return std::get_if<Array>(&value_); }
  const Dictionary* dictionary() const { return std::get_if<Dictionary>(&value_); }

  bool operator==(const PropertyListValue&) const = default;

 private:
  std::variant<bool, std::int64_t, std::string, Opaque, Array, Dictionary> value_;
};

/// Of a dictionary's value; null where there is none.
const PropertyListValue* valueAt(const PropertyListValue::Dictionary& dictionary, std::string_view key);

/// Reads a property list in its XML form (DTD "PropertyList-1.0"), strictly: no value for anything malformed, for text
/// that isn't UTF-8, for elements of another kind, for more than 64 levels, for the binary form. Of a key that stands
/// twice the last counts. An entity other than XML's own five and character references is malformed, so nothing
/// expands.
std::optional<PropertyListValue> parsePropertyList(std::string_view text);

}  // namespace lumenary
