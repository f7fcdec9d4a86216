#include "platform/linux/LinuxDefaults.h"

#include <cstddef>

#include "base/JsonReader.h"
#include "base/Text.h"

namespace lumenary {
namespace {

constexpr std::size_t byteLimit = std::size_t{1} << 20;

}  // namespace

std::optional<std::string> LinuxDefaults::string(const std::string& key) const {
  const auto bytes = files_.read(path_, byteLimit);
  if (!bytes) {
    return {};
  }
  const auto document = JsonDocument::parse(*bytes);
  if (!document) {
    return {};
  }
  const auto value = document->root().member(key);
  const auto text = value ? value->string() : std::nullopt;
  return text ? std::optional(bytesOfReversibleText(*text)) : std::nullopt;
}

}  // namespace lumenary
