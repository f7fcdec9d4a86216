#include "platform/linux/LinuxDefaults.h"

#include <cerrno>
#include <cstddef>

#include "base/JsonReader.h"
#include "base/Text.h"

namespace lumenary {
namespace {

constexpr std::size_t byteLimit = std::size_t{1} << 20;

}  // namespace

std::expected<std::optional<std::string>, std::string> LinuxDefaults::string(const std::string& key) const {
  const auto bytes = files_.read(path_, byteLimit);
  if (!bytes) {
    const bool isWithout = bytes.error().isMissing() || bytes.error().code == EFBIG;
    return isWithout ? std::expected<std::optional<std::string>, std::string>()
                     : std::unexpected("The settings can't be read: " + bytes.error().description() + ".");
  }
  const auto document = JsonDocument::parse(*bytes);
  if (!document) {
    return document.error() == JsonDocument::Error::unavailable
               ? std::unexpected("The settings can't be read: the simdjson library can't be loaded.")
               : std::expected<std::optional<std::string>, std::string>();
  }
  const auto value = document->root().member(key);
  const auto text = value ? value->string() : std::nullopt;
  return text ? std::optional(bytesOfReversibleText(*text)) : std::nullopt;
}

}  // namespace lumenary
