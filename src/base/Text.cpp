#include "base/Text.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace lumenary {
namespace {

constexpr std::string_view replacementCharacter = "\uFFFD";

std::uint8_t byteAt(std::string_view bytes, std::size_t index) { return static_cast<std::uint8_t>(bytes[index]); }

char loweredASCII(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

bool isBetween(std::uint32_t value, std::uint32_t lowest, std::uint32_t highest) {
  return lowest <= value && value <= highest;
}

bool isASCII(std::string_view bytes) {
  // Without a way out in the middle the compiler takes many bytes at once.
  unsigned all = 0;
  for (const char byte : bytes) {
    all |= static_cast<std::uint8_t>(byte);
  }
  return all < 0x80;
}

/// What the first byte of a sequence says of the rest.
struct Lead {
  std::uint8_t first = 0;
  std::uint8_t last = 0;
  std::size_t length = 0;
  std::uint8_t lowestSecond = 0x80;
  std::uint8_t highestSecond = 0xBF;
};

/// The Unicode standard's table of well-formed sequences of two bytes and more. After four first bytes the second has
/// less room: no overlong forms, no surrogates, nothing above U+10FFFF.
constexpr std::array leads{
    Lead{.first = 0xC2, .last = 0xDF, .length = 2},
    Lead{.first = 0xE0, .last = 0xE0, .length = 3, .lowestSecond = 0xA0},
    Lead{.first = 0xE1, .last = 0xEC, .length = 3},
    Lead{.first = 0xED, .last = 0xED, .length = 3, .highestSecond = 0x9F},
    Lead{.first = 0xEE, .last = 0xEF, .length = 3},
    Lead{.first = 0xF0, .last = 0xF0, .length = 4, .lowestSecond = 0x90},
    Lead{.first = 0xF1, .last = 0xF3, .length = 4},
    Lead{.first = 0xF4, .last = 0xF4, .length = 4, .highestSecond = 0x8F},
};

/// A well-formed character, or one byte that is part of none.
struct Piece {
  std::string_view bytes;
  bool isCharacter;
};

Piece takePiece(std::string_view& rest) {
  const std::size_t length = utf8SequenceLength(rest);
  const Piece piece{.bytes = rest.substr(0, std::max<std::size_t>(length, 1)), .isCharacter = length > 0};
  rest.remove_prefix(piece.bytes.size());
  return piece;
}

/// The code point of one well-formed sequence.
std::uint32_t codePoint(std::string_view sequence) {
  if (sequence.size() == 1) {
    return byteAt(sequence, 0);
  }
  std::uint32_t value = byteAt(sequence, 0) & (0x7FU >> sequence.size());
  for (std::size_t i = 1; i < sequence.size(); ++i) {
    value = value << 6 | (byteAt(sequence, i) & 0x3FU);
  }
  return value;
}

/// C0, DEL and C1; the line and paragraph separators; the marks, embeddings, overrides and isolates of bidirectional
/// text.
bool disturbsDisplay(std::uint32_t character) {
  return character < 0x20 || isBetween(character, 0x7F, 0x9F) || isBetween(character, 0x2028, 0x2029) ||
         character == 0x061C || isBetween(character, 0x200E, 0x200F) || isBetween(character, 0x202A, 0x202E) ||
         isBetween(character, 0x2066, 0x2069);
}

/// U+EF80 to U+EFFF, the characters that stand for the bytes 80 to FF.
bool standsForByte(std::string_view sequence) {
  return sequence.size() == 3 && isBetween(codePoint(sequence), 0xEF80, 0xEFFF);
}

void appendStandIn(std::string& out, std::uint8_t byte) {
  out += '\xEE';
  out += byte < 0xC0 ? '\xBE' : '\xBF';
  out += static_cast<char>(0x80 | (byte & 0x3F));
}

}  // namespace

std::size_t utf8SequenceLength(std::string_view bytes) {
  if (bytes.empty()) {
    return 0;
  }
  const std::uint8_t first = byteAt(bytes, 0);
  if (first < 0x80) {
    return 1;
  }
  const auto* const lead =
      std::ranges::find_if(leads, [first](const Lead& each) { return isBetween(first, each.first, each.last); });
  if (lead == leads.end() || bytes.size() < lead->length) {
    return 0;
  }
  const bool continues = isBetween(byteAt(bytes, 1), lead->lowestSecond, lead->highestSecond) &&
                         std::ranges::all_of(bytes.substr(2, lead->length - 2), [](char byte) {
                           return isBetween(static_cast<std::uint8_t>(byte), 0x80, 0xBF);
                         });
  return continues ? lead->length : 0;
}

bool isReversibleAsItIs(std::string_view bytes) {
  while (!bytes.empty()) {
    if (bytes.size() >= 8 && isASCII(bytes.substr(0, 8))) {
      bytes.remove_prefix(8);
      continue;
    }
    const std::size_t length = utf8SequenceLength(bytes);
    if (length == 0 || standsForByte(bytes.substr(0, length))) {
      return false;
    }
    bytes.remove_prefix(length);
  }
  return true;
}

bool isUTF8(std::string_view bytes) {
  while (!bytes.empty()) {
    if (!takePiece(bytes).isCharacter) {
      return false;
    }
  }
  return true;
}

std::string displayText(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  while (!bytes.empty()) {
    const auto [piece, isCharacter] = takePiece(bytes);
    text += isCharacter && !disturbsDisplay(codePoint(piece)) ? piece : replacementCharacter;
  }
  return text;
}

std::string reversibleText(std::string_view bytes) {
  if (isReversibleAsItIs(bytes)) {
    return std::string(bytes);
  }
  std::string text;
  text.reserve(bytes.size());
  while (!bytes.empty()) {
    const auto [piece, isCharacter] = takePiece(bytes);
    if (isCharacter && !standsForByte(piece)) {
      text += piece;
      continue;
    }
    for (const char byte : piece) {
      appendStandIn(text, static_cast<std::uint8_t>(byte));
    }
  }
  return text;
}

std::string bytesOfReversibleText(std::string_view text) {
  // The characters that stand for bytes all begin with this one, which few others do.
  if (!text.contains('\xEE')) {
    return std::string(text);
  }
  std::string bytes;
  bytes.reserve(text.size());
  while (!text.empty()) {
    const auto [piece, isCharacter] = takePiece(text);
    if (isCharacter && standsForByte(piece)) {
      bytes += static_cast<char>(codePoint(piece) & 0xFF);
    } else {
      bytes += piece;
    }
  }
  return bytes;
}

std::string loweredASCII(std::string_view text) {
  std::string lowered(text);
  std::ranges::transform(lowered, lowered.begin(), [](char character) { return loweredASCII(character); });
  return lowered;
}

bool equalsIgnoringCase(std::string_view text, std::string_view lowered) {
  return std::ranges::equal(text, lowered, {}, [](char character) { return loweredASCII(character); });
}

std::string paddedOrCut(std::string_view text, std::size_t width) {
  std::string result;
  std::size_t characters = 0;
  for (; characters < width && !text.empty(); ++characters) {
    result += takePiece(text).bytes;
  }
  return result.append(width - characters, ' ');
}

}  // namespace lumenary
