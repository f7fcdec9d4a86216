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
  // Looked at before and after it is standardised: taking "link/.." away could lead to another folder than the one that
  // was named.
  const std::string path = absolutePath(reader, expanded);
  const auto asNamed = reader.attributes(path, LinkPolicy::follow);
  std::string standardised = standardise(path);
  const auto found = reader.attributes(standardised, LinkPolicy::follow);
  if (!asNamed || asNamed->identity.kind != FileKind::folder || !found || found->identity != asNamed->identity) {
    return std::unexpected(std::move(standardised));
  }
  return standardised;
}

}  // namespace lumenary::CleanupCommand
