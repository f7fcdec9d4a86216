#include "platform/linux/LinuxDefaults.h"

#include <cerrno>
#include <cstddef>

#include "base/JsonCopy.h"
#include "base/Path.h"
#include "base/Text.h"

namespace lumenary {
namespace {

constexpr std::size_t byteLimit = std::size_t{1} << 20;

/// The settings as a text, `key` with its new value; none where `bytes` aren't settings.
std::expected<std::string, JsonDocument::Error> replaced(std::string_view bytes, const std::string& key,
                                                         std::string_view value) {
  const auto document = JsonDocument::parse(bytes);
  if (!document) {
    return std::unexpected(document.error());
  }
  const auto members = document->root().members();
  if (!members) {
    return std::unexpected(JsonDocument::Error::malformed);
  }
  JsonWriter json(JsonWriter::Layout::pretty);
  json.beginObject();
  for (const auto& [name, member] : *members) {
    if (name != key) {
      json.key(name);
      copyJson(member, json);
    }
  }
  json.key(key).bytes(value);
  json.endObject();
  return json.take() + "\n";
}

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

SystemResult<void> LinuxDefaults::setString(const std::string& key, std::string_view value) {
  if (path_.empty()) {
    return std::unexpected(SystemError{ENOENT});  // without a home there is no place for settings
  }
  if (auto made = files_.makeFolders(std::string(parentPath(path_))); !made) {
    return made;
  }
  const auto lock = files_.lock(path_ + ".lock");
  if (!lock && !lock.error().isWithoutLocks()) {
    return std::unexpected(lock.error());
  }
  const auto bytes = files_.read(path_, byteLimit);
  if (!bytes && !bytes.error().isMissing()) {
    return std::unexpected(bytes.error());
  }
  auto text = replaced(bytes ? *bytes : "{}", key, value);
  if (!text && text.error() != JsonDocument::Error::unavailable && bytes) {
    if (auto kept = keepDamaged(*bytes); !kept) {
      return kept;
    }
    text = replaced("{}", key, value);
  }
  if (text && text->size() > byteLimit) {
    return std::unexpected(SystemError{EFBIG});  // it could not be read again
  }
  return text ? files_.writeAtomically(path_, *text) : std::unexpected(SystemError{ELIBACC});
}

/// The first damage is what stays: an older copy is left as it is.
SystemResult<void> LinuxDefaults::keepDamaged(const std::string& bytes) {
  const std::string copy = appendingPathComponent(parentPath(path_), "defaults.unreadable.json");
  const auto present = files_.read(copy, 0);
  if (present || present.error().code == EFBIG) {
    return {};
  }
  return files_.writeAtomically(copy, bytes);
}

}  // namespace lumenary
