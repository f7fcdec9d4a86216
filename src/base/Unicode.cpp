#include "base/Unicode.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <cstdint>

#include "base/Text.h"

namespace lumenary {
namespace {

utf8proc_int32_t characterAt(std::string_view sequence) {
  utf8proc_int32_t character = 0;
  utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(sequence.data()),
                   static_cast<utf8proc_ssize_t>(sequence.size()), &character);
  return character;
}

/// The library folds fully, one character to several where Unicode says so. Its simple folding differs from that only
/// there, and is the plain lower case.
utf8proc_int32_t folded(utf8proc_int32_t character) {
  utf8proc_int32_t full = 0;
  int boundary = 0;
  const auto length = utf8proc_decompose_char(character, &full, 1, UTF8PROC_CASEFOLD, &boundary);
  return length == 1 ? full : utf8proc_tolower(character);
}

void append(std::string& out, utf8proc_int32_t character) {
  std::array<utf8proc_uint8_t, 4> bytes{};
  const auto length = utf8proc_encode_char(character, bytes.data());
  out.append(bytes.begin(), bytes.begin() + length);
}

bool isWhiteSpace(utf8proc_int32_t character) {
  return (character >= 0x09 && character <= 0x0D) || character == 0x85 || character == 0x2028 || character == 0x2029 ||
         utf8proc_category(character) == UTF8PROC_CATEGORY_ZS;
}

bool isAlphanumeric(utf8proc_int32_t character) {
  switch (utf8proc_category(character)) {
    case UTF8PROC_CATEGORY_LU:
    case UTF8PROC_CATEGORY_LL:
    case UTF8PROC_CATEGORY_LT:
    case UTF8PROC_CATEGORY_LM:
    case UTF8PROC_CATEGORY_LO:
    case UTF8PROC_CATEGORY_MN:
    case UTF8PROC_CATEGORY_MC:
    case UTF8PROC_CATEGORY_ME:
    case UTF8PROC_CATEGORY_ND:
    case UTF8PROC_CATEGORY_NL:
    case UTF8PROC_CATEGORY_NO:
      return true;
    default:
      return false;
  }
}

/// The first character of `text`, or its first byte where that begins none.
std::string_view firstPiece(std::string_view text) {
  return text.substr(0, std::max<std::size_t>(1, utf8SequenceLength(text)));
}

bool isCharacter(std::string_view piece) { return utf8SequenceLength(piece) > 0; }

}  // namespace

std::string caseFolded(std::string_view text) {
  std::string result = loweredASCII(text);
  const auto firstOther = std::ranges::find_if(text, [](char byte) { return static_cast<std::uint8_t>(byte) >= 0x80; });
  if (firstOther == text.end()) {
    return result;
  }
  const auto known = static_cast<std::size_t>(firstOther - text.begin());
  result.resize(known);
  for (text.remove_prefix(known); !text.empty();) {
    const std::string_view piece = firstPiece(text);
    if (isCharacter(piece)) {
      append(result, folded(characterAt(piece)));
    } else {
      result += piece;
    }
    text.remove_prefix(piece.size());
  }
  return result;
}

std::string capitalised(std::string_view text) {
  std::string result;
  for (bool isInWord = false; !text.empty();) {
    const std::string_view piece = firstPiece(text);
    if (isCharacter(piece)) {
      const utf8proc_int32_t character = characterAt(piece);
      append(result, isInWord ? utf8proc_tolower(character) : utf8proc_totitle(character));
      isInWord = isAlphanumeric(character) || (isInWord && piece == "'");
    } else {
      result += piece;
    }
    text.remove_prefix(piece.size());
  }
  return result;
}

std::string_view trimmed(std::string_view text) {
  const auto isBlank = [](std::string_view piece) { return isCharacter(piece) && isWhiteSpace(characterAt(piece)); };
  while (!text.empty() && isBlank(firstPiece(text))) {
    text.remove_prefix(firstPiece(text).size());
  }
  std::size_t end = 0;
  for (std::size_t at = 0; at < text.size();) {
    const std::string_view piece = firstPiece(text.substr(at));
    at += piece.size();
    end = isBlank(piece) ? end : at;
  }
  return text.substr(0, end);
}

std::string alphanumericsOr(char replacement, std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::string_view piece = firstPiece(text);
    if (isCharacter(piece) && isAlphanumeric(characterAt(piece))) {
      result += piece;
    } else {
      result += replacement;
    }
    text.remove_prefix(piece.size());
  }
  return result;
}

}  // namespace lumenary
