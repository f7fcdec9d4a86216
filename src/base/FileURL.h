#pragma once

#include <compare>
#include <optional>
#include <string>
#include <string_view>

namespace lumenary {

/// Where a file or folder stands: an absolute path of any bytes, and whether it was a folder when it was seen.
struct FileURL {
  std::string path;       ///< absolute, standardised, no trailing slash
  bool isFolder = false;  ///< written as a trailing slash in the URL's text

  auto operator<=>(const FileURL&) const = default;
};

/// "file://" and the `percentEncoded` path, byte for byte; a folder ends in a slash.
std::string fileURLString(const FileURL& url);

/// Reads a file URL with an empty host or "localhost". No value for another scheme, a relative path, a broken %XX, a
/// NUL, a component "." or "..", a query or a fragment. Doubled slashes count as one.
std::optional<FileURL> parseFileURL(std::string_view text);

/// Percent-encoding of a path's bytes, the slashes kept: RFC 3986 unreserved characters and `/` stay, all else is %XX
/// in upper case. Shared by file URLs and the Trash's info files.
std::string percentEncoded(std::string_view path);

/// The bytes behind a percent-encoded text; no value for a broken %XX or a NUL, encoded or not.
std::optional<std::string> percentDecoded(std::string_view text);

}  // namespace lumenary
