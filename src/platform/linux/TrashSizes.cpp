#include "platform/linux/TrashSizes.h"

#include <algorithm>

#include "base/FileURL.h"

namespace lumenary {
namespace {

constexpr const char* fileName = "directorysizes";
constexpr std::size_t fileLimit = 64 * 1024 * 1024;

bool isNumber(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

/// The name on a line, or no value for a line of another form.
std::optional<std::string> nameOf(std::string_view line) {
  const auto first = line.find(' ');
  const auto second = first == std::string_view::npos ? first : line.find(' ', first + 1);
  if (second == std::string_view::npos || !isNumber(line.substr(0, first)) ||
      !isNumber(line.substr(first + 1, second - first - 1))) {
    return std::nullopt;
  }
  return percentDecoded(line.substr(second + 1));
}

}  // namespace

std::string updatedFolderSizes(std::string_view text, const FolderSizeChanges& changes) {
  std::string result;
  while (!text.empty()) {
    const auto end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    const auto name = nameOf(line);
    if (name && !changes.contains(*name)) {
      result.append(line).append("\n");
    }
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  for (const auto& [name, size] : changes) {
    if (size) {
      result += std::to_string(size->allocatedBytes) + " " + std::to_string(size->infoModifiedSeconds) + " " +
                percentEncoded(name) + "\n";
    }
  }
  return result;
}

void writeFolderSizes(LinuxKernel& kernel, const TrashFolder& trash, const FolderSizeChanges& changes) {
  std::string before;
  if (auto file = openAt(kernel, trash.folder, fileName, O_RDONLY | O_NOFOLLOW | O_NONBLOCK)) {
    auto bytes = readAll(kernel, *file, fileLimit);
    if (!bytes) {
      return;
    }
    before = *std::move(bytes);
  }
  const std::string after = updatedFolderSizes(before, changes);
  if (after != before) {
    static_cast<void>(replaceFile(kernel, trash.folder, fileName, after));
  }
}

}  // namespace lumenary
