#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// Names are bytes; text is for people and for JSON. This is the only place that turns one into the other.
namespace lumenary {

/// How long the UTF-8 sequence at the start of `bytes` is (1 to 4), by the Unicode standard's table of
/// well-formed sequences; 0 where the first byte starts none or `bytes` is empty.
std::size_t utf8SequenceLength(std::string_view bytes);

/// True for text that is well-formed throughout; the empty text is.
bool isUTF8(std::string_view bytes);

/// For a terminal or a screen: what isn't UTF-8, control characters, and the marks that reorder text or
/// break lines become U+FFFD, one for each byte or character, so that no name can move the cursor.
std::string displayText(std::string_view bytes);

/// For JSON: valid UTF-8 from any bytes, and back. A byte 0xNN that isn't part of well-formed UTF-8 becomes the
/// private-use character U+EFNN (NN from 80 to FF); a name that holds one of U+EF80 to U+EFFF has the
/// three bytes of that character written in the same way. Anything else stays as it is.
std::string reversibleText(std::string_view bytes);
/// True where that is the same text.
bool isReversibleAsItIs(std::string_view bytes);

/// The bytes behind a text that `reversibleText` wrote.
std::string bytesOfReversibleText(std::string_view text);

/// A to Z in lower case, every other byte as it is: enough to compare with names made of ASCII.
std::string loweredASCII(std::string_view text);
/// `lowered` is ASCII in lower case.
bool equalsIgnoringCase(std::string_view text, std::string_view lowered);

/// `text` (UTF-8) filled with blanks on the right, or cut, to exactly `width` characters.
std::string paddedOrCut(std::string_view text, std::size_t width);

}  // namespace lumenary
