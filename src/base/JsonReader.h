#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// The one JSON reader. It stands on simdjson, whose shared library is opened at the first read: the command's
/// listing never pays for loading it.
namespace lumenary {

/// A value inside a `JsonDocument`; valid as long as the document lives.
class JsonValue {
 public:
  bool isNull() const;
  /// The value as the asked type, or no value where it is of another one. Numbers are not converted from text.
  std::optional<std::string_view> string() const;
  std::optional<std::int64_t> integer() const;
  std::optional<std::uint64_t> unsignedInteger() const;
  std::optional<double> number() const;
  std::optional<bool> boolean() const;
  /// The elements of an array in order; no value for anything else.
  std::optional<std::vector<JsonValue>> elements() const;
  /// The members of an object in order, a key that stands twice included; no value for anything else.
  std::optional<std::vector<std::pair<std::string_view, JsonValue>>> members() const;
  /// The first member of an object with that key; no value for another type or an absent key.
  std::optional<JsonValue> member(std::string_view key) const;

 private:
  // Mirrors the library's own reference to an element, which alone makes and reads it.
  [[maybe_unused]] const void* document_;
  [[maybe_unused]] std::size_t index_;
};

/// A parsed text. Valid JSON in valid UTF-8 only, of at most 1 GiB. Refused as well: a value inside more than 64 arrays
/// and objects, and a number that neither a 64-bit integer nor a double can hold.
class JsonDocument {
 public:
  /// Why a text could not be read; `unavailable` says nothing about the text: the library or memory for it is missing.
  enum class Error { malformed, tooDeep, tooLarge, unavailable };

  static std::expected<JsonDocument, Error> parse(std::string_view text);

  JsonDocument(const JsonDocument&) = delete;
  JsonDocument& operator=(const JsonDocument&) = delete;
  JsonDocument(JsonDocument&&) noexcept;
  JsonDocument& operator=(JsonDocument&&) noexcept;
  ~JsonDocument();

  JsonValue root() const;

 private:
  struct Parsed;
  explicit JsonDocument(std::unique_ptr<Parsed> parsed);
  std::unique_ptr<Parsed> parsed_;
};

}  // namespace lumenary
