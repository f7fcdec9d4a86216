#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

#include "base/Date.h"

namespace lumenary {

struct LinkTo {
  std::string target;  ///< written into the link as it is
};

struct HardLinkTo {
  std::string path;  ///< of the tree, built before
};

struct Content {
  std::string bytes;
};

/// One thing in the literal of a tree: {"app/package.json", 10}, {"app/empty/"}, {"app/latest", LinkTo{"../b"}},
/// {"b/same.js", HardLinkTo{"a/same.js"}}, {"notes", Content{"text"}}, each with a date behind it where one matters.
struct TreeEntry {
  enum class Kind : std::uint8_t { folder, file, link, hardLink };

  /// A folder where the path ends in a slash, otherwise an empty file.
  TreeEntry(std::string_view at, std::optional<Date> date = {})
      : path(at), kind(at.ends_with('/') ? Kind::folder : Kind::file), modified(date) {}
  /// A file of that many bytes that aren't zero, so that the disk really holds them.
  TreeEntry(std::string_view at, int byteCount, std::optional<Date> date = {})
      : path(at), data(static_cast<std::size_t>(byteCount), 'x'), modified(date) {}
  TreeEntry(std::string_view at, Content content, std::optional<Date> date = {})
      : path(at), data(content.bytes), modified(date) {}
  TreeEntry(std::string_view at, LinkTo link, std::optional<Date> date = {})
      : path(at), kind(Kind::link), data(link.target), modified(date) {}
  TreeEntry(std::string_view at, HardLinkTo link) : path(at), kind(Kind::hardLink), data(link.path) {}

  std::string path;  ///< below the tree's root, any bytes
  Kind kind = Kind::file;
  std::string data;  ///< a file's bytes, a link's target, or the path of the hard link's other name
  std::optional<Date> modified;
};

/// A folder of its own for one test, with no link in its path, removed with all that is in it when the value goes:
/// closed folders and chains longer than any path included. TMPDIR says where, if it is set. What can't be built
/// throws.
class TemporaryTree {
 public:
  TemporaryTree();
  TemporaryTree(std::initializer_list<TreeEntry> entries) : TemporaryTree() { build(entries); }
  ~TemporaryTree();
  TemporaryTree(const TemporaryTree&) = delete;
  TemporaryTree& operator=(const TemporaryTree&) = delete;

  const std::string& root() const { return root_; }
  /// The absolute path of a thing in the tree; of the root for an empty one.
  std::string path(std::string_view relative) const;

  /// Makes the entries in order, and the folders around them where they are missing. An existing file is written anew.
  void build(std::initializer_list<TreeEntry> entries);
  /// Makes `depth` folders inside one another, each called "d" and each holding the entries.
  void buildChain(std::size_t depth, std::initializer_list<TreeEntry> inEachFolder);

  void remove(std::string_view relative);
  void rename(std::string_view from, std::string_view to);
  /// The date of the thing itself; a link is not followed.
  void setModified(std::string_view relative, Date date);
  /// The date of the thing and of all below it.
  void setAllModified(std::string_view relative, Date date);

  /// The blocks that the file system gave these things, added up: what a measurement of exactly them has to find.
  std::int64_t allocatedBytes(std::initializer_list<std::string_view> relatives) const;

 private:
  void make(const std::string& made, const TreeEntry& entry);

  std::string root_;
};

}  // namespace lumenary
