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

bool holdsDotComponent(std::string_view path) {
  for (std::size_t at = path.find("/."); at != std::string_view::npos; at = path.find("/.", at + 1)) {
    const std::string_view component = path.substr(at + 1, path.find('/', at + 1) - at - 1);
    if (component == "." || component == "..") {
      return true;
    }
  }
  return false;
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
  if (!text.starts_with('/') || text.contains('?') || text.contains('#')) {
    return std::nullopt;
  }
  std::optional<std::string> path = percentDecoded(text);
  // Looked for behind the encoding, so that "%2E%2E" climbs nowhere either.
  if (!path || holdsDotComponent(*path)) {
    return std::nullopt;
  }
  const bool isFolder = path->ends_with('/');
  return FileURL{.path = standardised(*std::move(path)), .isFolder = isFolder};
}

std::string percentEncoded(std::string_view path) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string text(3 * path.size(), '%');
  char* end = text.data();
  for (const char character : path) {
    const auto byte = static_cast<std::uint8_t>(character);
    if (isKept[byte]) {
      *end++ = character;
    } else {
      end[1] = digits[byte >> 4];
      end[2] = digits[byte & 0xF];
      end += 3;
    }
  }
  text.resize(static_cast<std::size_t>(end - text.data()));
  return text;
}

std::optional<std::string> percentDecoded(std::string_view text) {
  if (text.contains('\0')) {
    return std::nullopt;
  }
  std::string bytes(text.size(), '\0');
  char* end = bytes.data();
  while (!text.empty()) {
    if (text.front() != '%') {
      const std::size_t run = std::min(text.find('%'), text.size());
      end += text.copy(end, run);
      text.remove_prefix(run);
      continue;
    }
    const auto byte = hexByte(text.substr(1, 2));
    if (!byte || *byte == 0) {
      return std::nullopt;
    }
    *end++ = static_cast<char>(*byte);
    text.remove_prefix(3);
  }
  bytes.resize(static_cast<std::size_t>(end - bytes.data()));
  return bytes;
}

}  // namespace lumenary
