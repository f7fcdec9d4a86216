#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Date.h"
#include "platform/Descriptor.h"
#include "platform/FileIdentity.h"
#include "platform/SystemError.h"

/// Reading folders and attributes. Whoever holds only a reader cannot change anything.
namespace lumenary {

struct FolderEntry {
  const char* name = nullptr;  ///< ends in NUL; valid until the next read into the same scratch
  std::size_t length = 0;      ///< bytes of `name`
  FileKind kind = FileKind::other;
};

/// The memory that one walk reads folders into, used again for each folder.
struct FolderScratch {
  static constexpr std::size_t bufferBytes = 64 * 1024;
  std::unique_ptr<std::byte[]> buffer = std::make_unique_for_overwrite<std::byte[]>(bufferBytes);
  std::vector<FolderEntry> entries;
};

struct FileAttributes {
  FileIdentity identity;
  std::uint32_t linkCount = 0;
  std::uint32_t owner = 0;          ///< user id
  std::int64_t length = 0;          ///< how many bytes a file holds
  std::int64_t allocatedBytes = 0;  ///< blocks of 512 bytes times 512
  Date modified;
  bool isUnchangeable = false;  ///< marked immutable or append-only
};

enum class LinkPolicy {
  refuse,  ///< a link in any component of the path is an error (isLink)
  follow,
};

/// All operations block, and may be called from any thread at once.
class FileReader {
 public:
  virtual ~FileReader() = default;

  /// Opens the folder at an absolute path of any length.
  virtual SystemResult<Descriptor> openFolder(std::string_view path, LinkPolicy links) const = 0;
  /// Opens a folder by its name inside an open one; a link is an error. ".." gives the folder around it.
  virtual SystemResult<Descriptor> openFolder(const Descriptor& parent, const char* name) const = 0;

  /// The next entries of an open folder without "." and ".."; an empty span at its end. No order is promised.
  virtual SystemResult<std::span<const FolderEntry>> nextEntries(const Descriptor& folder,
                                                                 FolderScratch& scratch) const = 0;

  /// The attributes of an entry of an open folder; a link is not followed, an automount not triggered.
  virtual SystemResult<FileAttributes> attributes(const Descriptor& folder, const char* name) const = 0;
  virtual SystemResult<FileAttributes> attributes(const Descriptor& folder) const = 0;
  /// The attributes of what stands at an absolute path. Links in the folders of the path are followed, in its
  /// last component as `links` says.
  virtual SystemResult<FileAttributes> attributes(std::string_view path, LinkPolicy links) const = 0;

  /// The path with all links resolved.
  virtual SystemResult<std::string> realPath(std::string_view path) const = 0;

  /// True where following links from the path leads to something.
  bool exists(std::string_view path) const { return attributes(path, LinkPolicy::follow).has_value(); }
};

}  // namespace lumenary
