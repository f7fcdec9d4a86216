#include "storage/FileEntry.h"

#include <array>
#include <cstddef>

#include "base/EnumText.h"

namespace lumenary {
namespace {

constexpr std::array<std::string_view, 3> kindTexts = {"file", "directory", "symbolicLink"};

}  // namespace

std::string_view rawValue(FileEntry::Kind kind) { return kindTexts.at(static_cast<std::size_t>(kind)); }

std::optional<FileEntry::Kind> fileEntryKindOf(std::string_view rawValue) {
  return enumOf<FileEntry::Kind>(kindTexts, rawValue);
}

}  // namespace lumenary
