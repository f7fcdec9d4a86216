#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace lumenary {

/// How many names are tried for one item before it is refused.
inline constexpr unsigned trashNameAttempts = 24;

/// The name for the given attempt: the item's own, then "name.2.ext" to "name.9.ext", then with eight random
/// hexadecimal digits in place of the number, so that the thousandth "node_modules" costs no more than the tenth. At
/// most `limit` bytes: a longer stem is cut on a character's border, the extension stays.
std::string trashName(std::string_view itemName, unsigned attempt, std::size_t limit);

}  // namespace lumenary
