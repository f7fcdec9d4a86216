#include "base/FileURL.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "base/Hex.h"
#include "base/Path.h"

namespace lumenary {
namespace {

constexpr std::string_view scheme = "file://";
constexpr std::string_view localHost = "localhost";
/// The characters that stay, by their byte.
constexpr auto isKept = [] {
  std::array<bool, 256> kept{};
  for (const char character : std::string_view("ABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                               "abcdefghijklmnopqrstuvwxyz"
                                               "0123456789-._~/")) {
    kept.at(static_cast<std::uint8_t>(character)) = true;
  }
  return kept;
}();

bool holdsDotComponent(const std::string& path) {
  const std::string closed = path + '/';
  return closed.contains("/./") || closed.contains("/../");
}

}  // namespace

std::string fileURLString(const FileURL& url) {
  std::string text = std::string(scheme) + percentEncoded(url.path);
  if (url.isFolder && !text.ends_with('/')) {
    text += '/';
  }
  return text;
}

std::optional<FileURL> parseFileURL(std::string_view text) {
  if (!text.starts_with(scheme)) {
    return std::nullopt;
  }
  text.remove_prefix(scheme.size());
  if (text.starts_with(localHost)) {
    text.remove_prefix(localHost.size());
  }
  if (!text.starts_with('/') || text.find_first_of("?#") != std::string_view::npos) {
    return std::nullopt;
  }
  const std::optional<std::string> path = percentDecoded(text);
  // Looked for behind the encoding, so that "%2E%2E" climbs nowhere either.
  if (!path || holdsDotComponent(*path)) {
    return std::nullopt;
  }
  return FileURL{.path = standardise(*path), .isFolder = path->ends_with('/')};
}

std::string percentEncoded(std::string_view path) {
  std::string text;
  text.reserve(path.size());
  for (const char character : path) {
    const auto byte = static_cast<std::uint8_t>(character);
    if (isKept[byte]) {
      text += character;
    } else {
      text += '%';
      appendHex(text, byte);
    }
  }
  return text;
}

std::optional<std::string> percentDecoded(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  while (!text.empty()) {
    const bool isEncoded = text.starts_with('%');
    const std::optional<std::uint8_t> byte =
        isEncoded ? hexByte(text.substr(1, 2)) : static_cast<std::uint8_t>(text.front());
    if (!byte || *byte == 0) {
      return std::nullopt;
    }
    bytes += static_cast<char>(*byte);
    text.remove_prefix(isEncoded ? 3 : 1);
  }
  return bytes;
}

}  // namespace lumenary
