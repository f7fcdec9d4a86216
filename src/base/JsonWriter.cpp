#include "base/JsonWriter.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <utility>

#include "base/Hex.h"
#include "base/Text.h"

namespace lumenary {
namespace {

template <class Number, class... Format>
void appendNumber(std::string& out, Number value, Format... format) {
  std::array<char, 32> digits{};
  const auto [end, error] = std::to_chars(digits.begin(), digits.end(), value, format...);
  out.append(digits.begin(), end);
}

void appendLineBreak(std::string& out, std::size_t level) { out.append("\n").append(2 * level, ' '); }

void appendEscaped(std::string& out, char character) {
  switch (character) {
    case '"':
      out += "\\\"";
      return;
    case '\\':
      out += "\\\\";
      return;
    case '\b':
      out += "\\b";
      return;
    case '\f':
      out += "\\f";
      return;
    case '\n':
      out += "\\n";
      return;
    case '\r':
      out += "\\r";
      return;
    case '\t':
      out += "\\t";
      return;
    default:
      break;
  }
  if (static_cast<unsigned char>(character) < 0x20) {
    out += "\\u00";
    appendHex(out, static_cast<std::uint8_t>(character));
  } else {
    out += character;
  }
}

bool needsEscape(char character) {
  return static_cast<unsigned char>(character) < 0x20 || character == '"' || character == '\\';
}

/// How many characters at the start stand for themselves. Eight at once: most texts need no escape at all.
std::size_t lengthWithoutEscape(std::string_view text) {
  constexpr std::uint64_t ones = 0x0101'0101'0101'0101U;
  constexpr std::uint64_t highBits = 0x80 * ones;
  // The high bit of each byte that is zero; a carry can only add bits above the lowest that is right.
  const auto zeros = [](std::uint64_t word) { return (word - ones) & ~word & highBits; };
  std::size_t length = 0;
  for (; text.size() - length >= 8; length += 8) {
    std::uint64_t word = 0;
    std::memcpy(&word, text.data() + length, 8);
    const std::uint64_t control = (word - 0x20 * ones) & ~word & highBits;
    if ((control | zeros(word ^ ('"' * ones)) | zeros(word ^ ('\\' * ones))) != 0) {
      break;
    }
  }
  while (length < text.size() && !needsEscape(text[length])) {
    ++length;
  }
  return length;
}

void appendString(std::string& out, std::string_view text) {
  out += '"';
  while (!text.empty()) {
    const std::size_t run = lengthWithoutEscape(text);
    out += text.substr(0, run);
    text.remove_prefix(run);
    if (!text.empty()) {
      appendEscaped(out, text.front());
      text.remove_prefix(1);
    }
  }
  out += '"';
}

}  // namespace

JsonWriter::JsonWriter(Layout layout, std::size_t expectedBytes) : layout_(layout) { out_.reserve(expectedBytes); }

JsonWriter& JsonWriter::beginObject() {
  open('{');
  return *this;
}

JsonWriter& JsonWriter::endObject() {
  close('}');
  return *this;
}

JsonWriter& JsonWriter::beginArray() {
  open('[');
  return *this;
}

JsonWriter& JsonWriter::endArray() {
  close(']');
  return *this;
}

JsonWriter& JsonWriter::key(std::string_view name) {
  beforeValue();
  appendString(out_, name);
  out_ += layout_ == Layout::pretty ? ": " : ":";
  afterKey_ = true;
  return *this;
}

JsonWriter& JsonWriter::string(std::string_view text) {
  beforeValue();
  appendString(out_, text);
  return *this;
}

JsonWriter& JsonWriter::bytes(std::string_view bytes) {
  return isReversibleAsItIs(bytes) ? string(bytes) : string(reversibleText(bytes));
}

JsonWriter& JsonWriter::keyOfBytes(std::string_view bytes) {
  return isReversibleAsItIs(bytes) ? key(bytes) : key(reversibleText(bytes));
}

JsonWriter& JsonWriter::integer(std::int64_t value) {
  beforeValue();
  appendNumber(out_, value);
  return *this;
}

JsonWriter& JsonWriter::unsignedInteger(std::uint64_t value) {
  beforeValue();
  appendNumber(out_, value);
  return *this;
}

JsonWriter& JsonWriter::number(double value) {
  // A whole number beyond this, written without an exponent, would be read as an integer, and most as one too large.
  constexpr double largestWithoutExponent = 1e15;
  if (!std::isfinite(value)) {
    return null();
  }
  beforeValue();
  if (std::abs(value) < largestWithoutExponent) {
    appendNumber(out_, value);
  } else {
    appendNumber(out_, value, std::chars_format::scientific);
  }
  return *this;
}

JsonWriter& JsonWriter::boolean(bool value) {
  beforeValue();
  out_ += value ? "true" : "false";
  return *this;
}

JsonWriter& JsonWriter::null() {
  beforeValue();
  out_ += "null";
  return *this;
}

std::string JsonWriter::take() { return std::move(out_); }

void JsonWriter::beforeValue() {
  const bool standsInLine = std::exchange(afterKey_, false) || levelHasContent_.empty();
  if (standsInLine) {
    return;
  }
  if (levelHasContent_.back()) {
    out_ += ',';
  }
  levelHasContent_.back() = true;
  if (layout_ == Layout::pretty) {
    appendLineBreak(out_, levelHasContent_.size());
  }
}

void JsonWriter::open(char bracket) {
  beforeValue();
  out_ += bracket;
  levelHasContent_.push_back(false);
}

void JsonWriter::close(char bracket) {
  const bool hadContent = levelHasContent_.back();
  levelHasContent_.pop_back();
  if (hadContent && layout_ == Layout::pretty) {
    appendLineBreak(out_, levelHasContent_.size());
  }
  out_ += bracket;
}

}  // namespace lumenary
