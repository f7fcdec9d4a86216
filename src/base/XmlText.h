#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace lumenary {

/// Takes the reference that `rest` begins with ("&amp;", "&#65;", "&#x41;") and appends what it stands for, in UTF-8.
/// False for anything but XML's own five entities and the numbers of characters: nothing that a document defines
/// expands.
bool takeXmlReference(std::string_view& rest, std::string& text);

/// The text behind a piece of XML without markup; none where a reference is malformed.
std::optional<std::string> xmlText(std::string_view escaped);

}  // namespace lumenary
