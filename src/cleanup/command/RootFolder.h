#pragma once

#include <expected>
#include <string>
#include <string_view>

#include "platform/FileReader.h"

namespace lumenary::CleanupCommand {

/// The folder that a person named, absolute and standardised, its links resolved where that can be done. "~" and "~/…"
/// start at `home`. Where it isn't a folder the error is the path that was looked at.
std::expected<std::string, std::string> rootFolder(const FileReader& reader, std::string_view named,
                                                   std::string_view home);

}  // namespace lumenary::CleanupCommand
