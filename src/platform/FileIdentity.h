#pragma once

#include <compare>
#include <cstdint>

namespace lumenary {

enum class FileKind : std::uint8_t { folder, file, link, other };

/// What a person saw: a path says where a thing stood, this says which thing it was.
struct FileIdentity {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  FileKind kind = FileKind::other;

  auto operator<=>(const FileIdentity&) const = default;
};

}  // namespace lumenary
