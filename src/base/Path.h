#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Lexical work on absolute paths. A path is bytes as the kernel gave them; nothing here touches the disk.
namespace lumenary {

/// Without doubled or trailing slashes, "." and ".."; ".." at the root stays at the root.
/// A relative path is taken as if it stood at the root.
std::string standardise(std::string_view path);
/// The same for a path that needn't be kept.
std::string standardised(std::string path);
/// True for a path that standardising doesn't change.
bool isStandard(std::string_view path);

/// What stands behind the last slash; "/" for the root.
std::string_view lastPathComponent(std::string_view path);

/// What stands behind the last dot of a name; empty where there is none, or only the first character is one.
std::string_view pathExtension(std::string_view name);

/// The path up to the last slash; "/" for the root and for what stands in it.
std::string_view parentPath(std::string_view path);

/// How many components a standardised path has; the root counts as one, so "/a/b" has three.
std::size_t pathComponentCount(std::string_view path);

/// `folder` + "/" + `name`, without a second slash behind the root.
std::string appendingPathComponent(std::string_view folder, std::string_view name);

/// True where `path` is `ancestor` itself or lies below it, told by whole components.
bool isSameOrInside(std::string_view path, std::string_view ancestor);

}  // namespace lumenary
