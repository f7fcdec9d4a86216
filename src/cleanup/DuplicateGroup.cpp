#include "cleanup/DuplicateGroup.h"

#include <algorithm>

#include "base/Path.h"
#include "base/Text.h"

namespace lumenary {
namespace {

bool isDigit(char byte) { return byte >= '0' && byte <= '9'; }

/// Takes the digits off the end, and gives how many there were.
std::size_t takeDigits(std::string_view& text) {
  const auto last = std::ranges::find_if_not(text.rbegin(), text.rend(), isDigit);
  const auto count = static_cast<std::size_t>(last - text.rbegin());
  text.remove_suffix(count);
  return count;
}

bool isSeparator(char byte) { return byte == ' ' || byte == '_' || byte == '-'; }

}  // namespace

bool looksLikeCopy(std::string_view name) {
  const std::string_view extension = pathExtension(name);
  if (!extension.empty()) {
    name.remove_suffix(extension.size() + 1);
  }
  const std::string lowered = loweredASCII(name);
  std::string_view rest = lowered;
  if (rest.ends_with(" copy")) {
    return true;
  }
  const bool isBracketed = rest.ends_with(')');
  if (isBracketed) {
    rest.remove_suffix(1);
  }
  const std::size_t digits = takeDigits(rest);
  if (digits == 0) {
    return false;
  }
  if (isBracketed) {
    return rest.ends_with(" (");
  }
  return rest.ends_with(" copy ") || (digits <= 2 && !rest.empty() && isSeparator(rest.back()));
}

bool keepFirst(const FileEntry& a, const FileEntry& b) {
  if (const bool isCopy = looksLikeCopy(a.name); isCopy != looksLikeCopy(b.name)) {
    return !isCopy;
  }
  const auto isDownload = [](const FileEntry& entry) { return entry.url.path.contains("/Downloads/"); };
  if (isDownload(a) != isDownload(b)) {
    return !isDownload(a);
  }
  // A file without a date is younger than any other, so that no three files can each come before the next.
  constexpr Date latest = Date::max();
  if (const Date ofA = a.modifiedAt.value_or(latest), ofB = b.modifiedAt.value_or(latest); ofA != ofB) {
    return ofA < ofB;
  }
  return a.url.path < b.url.path;
}

bool isInTrash(std::string_view path) {
  return path.contains("/Trash/files/") || path.contains("/.Trash/") || path.contains("/.Trash-") ||
         path.contains("/.Trashes/");
}

}  // namespace lumenary
