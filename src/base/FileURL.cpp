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

/// How many bytes at the start fulfil the condition.
std::size_t lengthOfRun(std::string_view bytes, auto condition) {
  return static_cast<std::size_t>(std::ranges::find_if_not(bytes, condition) - bytes.begin());
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
  text.reserve(path.size() + 16);
  while (!path.empty()) {
    const std::size_t run = lengthOfRun(path, [](char byte) { return isKept[static_cast<std::uint8_t>(byte)]; });
    text.append(path.substr(0, run));
    path.remove_prefix(run);
    if (!path.empty()) {
      text += '%';
      appendHex(text, static_cast<std::uint8_t>(path.front()));
      path.remove_prefix(1);
    }
  }
  return text;
}

std::optional<std::string> percentDecoded(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  while (!text.empty()) {
    const std::size_t run = lengthOfRun(text, [](char byte) { return byte != '%' && byte != '\0'; });
    bytes.append(text.substr(0, run));
    text.remove_prefix(run);
    if (text.empty()) {
      break;
    }
    const std::optional<std::uint8_t> byte = text.front() == '%' ? hexByte(text.substr(1, 2)) : std::nullopt;
    if (!byte || *byte == 0) {
      return std::nullopt;
    }
    bytes += static_cast<char>(*byte);
    text.remove_prefix(3);
  }
  return bytes;
}

}  // namespace lumenary
