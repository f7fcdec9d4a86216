#include "cleanup/command/RootFolder.h"

#include "base/Path.h"

namespace lumenary::CleanupCommand {
namespace {

std::string expandTilde(std::string_view path, std::string_view home) {
  const bool isAtHome = path == "~" || path.starts_with("~/");
  return isAtHome && !home.empty() ? std::string(home).append(path.substr(1)) : std::string(path);
}

std::string absolutePath(const FileReader& reader, const std::string& path) {
  if (auto real = reader.realPath(path)) {
    return *std::move(real);
  }
  return path.starts_with('/') ? path : appendingPathComponent(reader.realPath(".").value_or("/"), path);
}

}  // namespace

std::expected<std::string, std::string> rootFolder(const FileReader& reader, std::string_view named,
                                                   std::string_view home) {
  const std::string expanded = expandTilde(named, home);
  // An empty path would mean the current folder: a script whose variable is unset must not clean that.
  if (expanded.empty()) {
    return std::unexpected(expanded);
  }
  // Looked at before it is standardised: taking "link/.." away could lead to another folder than the one that was
  // named.
  const std::string path = absolutePath(reader, expanded);
  const auto attributes = reader.attributes(path, LinkPolicy::follow);
  if (!attributes || attributes->identity.kind != FileKind::folder) {
    return std::unexpected(standardise(path));
  }
  return standardise(path);
}

}  // namespace lumenary::CleanupCommand
