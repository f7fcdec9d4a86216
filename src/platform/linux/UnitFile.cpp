#include "platform/linux/UnitFile.h"

#include <algorithm>
#include <utility>

namespace lumenary {
namespace {

constexpr std::string_view blanks = " \t\r";

std::string_view withoutBlanks(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
  return text.substr(0, text.find_last_not_of(blanks) + 1);
}

/// The next line with the lines that continue it, without its comments; the text is moved on behind them.
std::string takeLogicalLine(std::string_view& text) {
  std::string logical;
  for (bool isContinued = true; isContinued && !text.empty();) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    const std::string_view content = withoutBlanks(line);
    if (content.starts_with('#') || content.starts_with(';')) {
      // Between continued lines a comment counts as not there.
      isContinued = !logical.empty();
      continue;
    }
    if (line.ends_with('\r')) {
      line.remove_suffix(1);
    }
    isContinued = line.ends_with('\\');
    logical += isContinued ? std::string(line.substr(0, line.size() - 1)) + " " : std::string(line);
  }
  return logical;
}

}  // namespace

void UnitFile::read(std::string_view text) {
  if (text.size() > byteLimit || text.contains('\0')) {
    return;
  }
  for (Keys* section = nullptr; !text.empty();) {
    const std::string logical = takeLogicalLine(text);
    const std::string_view line = withoutBlanks(logical);
    if (line.starts_with('[')) {
      const bool isWhole = line.size() > 2 && line.find(']') == line.size() - 1;
      section = isWhole ? &sections_[std::string(line.substr(1, line.size() - 2))] : nullptr;
    } else if (section != nullptr) {
      assign(*section, line);
    }
  }
}

void UnitFile::assign(Keys& keys, std::string_view line) {
  const std::size_t equals = line.find('=');
  const std::string_view key = withoutBlanks(line.substr(0, equals));
  if (equals == std::string_view::npos || key.empty()) {
    return;
  }
  const std::string_view value = withoutBlanks(line.substr(equals + 1));
  std::vector<std::string>& values = keys[std::string(key)];
  if (value.empty()) {
    values.clear();
  } else {
    values.emplace_back(value);
  }
}

bool UnitFile::hasSection(std::string_view section) const { return sections_.contains(section); }

std::vector<std::string> UnitFile::values(std::string_view section, std::string_view key) const {
  const auto keys = sections_.find(section);
  if (keys == sections_.end()) {
    return {};
  }
  const auto found = keys->second.find(key);
  return found == keys->second.end() ? std::vector<std::string>() : found->second;
}

std::string UnitFile::value(std::string_view section, std::string_view key) const {
  std::vector<std::string> all = values(section, key);
  return all.empty() ? "" : std::move(all.back());
}

}  // namespace lumenary
