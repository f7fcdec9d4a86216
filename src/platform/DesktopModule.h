#pragma once

#include <expected>
#include <string>

namespace lumenary {

/// The desktop face, as its module has it: takes the process's arguments and gives its exit status.
using DesktopMain = int (*)(int argumentCount, char** arguments);

/// Opens the module beside the program, or where a package puts it. The error is a sentence for the person: no display,
/// or no such module.
std::expected<DesktopMain, std::string> openDesktopModule();

}  // namespace lumenary
