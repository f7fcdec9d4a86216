#pragma once

#include <map>
#include <string>
#include <string_view>

namespace lumenary {

/// The keys of the group "Desktop Entry" of a file in the freedesktop.org format, as they stand behind "=", with their
/// escapes. Of a key that stands twice the first counts. Lines that aren't of the format are passed over.
std::map<std::string, std::string, std::less<>> parseDesktopEntry(std::string_view text);

/// The text behind a value of the type "string": \s, \n, \t, \r and \\ are read, another escape stays as it is.
std::string desktopEntryText(std::string_view value);

}  // namespace lumenary
