#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The one JSON writer. The caller writes keys in the order in which they shall stand (sorted, where a format asks for
/// it).
namespace lumenary {

class JsonWriter {
 public:
  enum class Layout {
    compact,  ///< no white space at all
    pretty,   ///< two blanks a level, one member or element a line, "key": value
  };

  /// `expectedBytes`: how long the text will be, roughly, where that is known.
  explicit JsonWriter(Layout layout, std::size_t expectedBytes = 0);

  JsonWriter& beginObject();
  JsonWriter& endObject();
  JsonWriter& beginArray();
  JsonWriter& endArray();
  JsonWriter& key(std::string_view name);
  /// `text` must be valid UTF-8; see `bytes` for names.
  JsonWriter& string(std::string_view text);
  /// Any bytes, as the text that `reversibleText` makes of them.
  JsonWriter& bytes(std::string_view bytes);
  JsonWriter& keyOfBytes(std::string_view bytes);
  JsonWriter& integer(std::int64_t value);
  JsonWriter& unsignedInteger(std::uint64_t value);
  /// The shortest text that reads back as the same number; infinities and NaN have none and are written as null.
  JsonWriter& number(double value);
  JsonWriter& boolean(bool value);
  JsonWriter& null();

  /// The finished text, without a trailing line break. The writer is spent afterwards.
  std::string take();

 private:
  void beforeValue();
  void open(char bracket);
  void close(char bracket);

  Layout layout_;
  std::string out_;
  std::vector<bool> levelHasContent_;
  bool afterKey_ = false;
};

}  // namespace lumenary
