#pragma once

#include <string>
#include <string_view>

/// What letters are to people who write in any script. UTF-8 in, UTF-8 out; bytes that aren't UTF-8 stay as they are.
namespace lumenary {

/// For comparing without regard to case: Unicode's simple case folding, one character for one; the capital I with a
/// dot counts as an i.
std::string caseFolded(std::string_view text);

/// The first letter of each word in upper case, the others in lower: "foo bar-baz" becomes "Foo Bar-Baz". A word ends
/// at whatever is no letter, digit or apostrophe.
std::string capitalised(std::string_view text);

/// Without the white space at both ends: blanks of any width, tabs, line breaks.
std::string_view trimmed(std::string_view text);

/// Each character that is no letter, mark or number replaced by `replacement`, and so is a byte that isn't UTF-8.
std::string alphanumericsOr(char replacement, std::string_view text);

}  // namespace lumenary
