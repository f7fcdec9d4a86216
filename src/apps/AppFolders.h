#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/FileReader.h"
#include "storage/FolderByteTotals.h"

namespace lumenary {

/// What one inventory sees of the disk. It lists no folder twice, and measures only what a scan hasn't.
class AppFolders {
 public:
  struct Entry {
    std::string name;
    FileKind kind = FileKind::other;
  };
  using Entries = std::vector<Entry>;

  /// `reader` and `known` must outlive the value. A stop request ends what is being measured.
  AppFolders(const FileReader& reader, const FolderByteTotals& known, std::stop_token stop)
      : reader_(reader), known_(known), stop_(std::move(stop)) {}

  /// What stands in a folder, by name; null where there is no readable folder. With `LinkPolicy::refuse` a link isn't
  /// one. Valid as long as this value.
  const Entries* entries(const std::string& path, LinkPolicy links = LinkPolicy::refuse);
  /// The same, empty where there is no such folder.
  const Entries& entriesOrNone(const std::string& path, LinkPolicy links = LinkPolicy::refuse);
  /// The same without keeping it; none as well where there are more than `most`.
  std::optional<Entries> fewEntries(const std::string& path, std::size_t most) const;

  /// What stands at a path, links not followed.
  std::optional<FileKind> kindAt(const std::string& path);
  bool isFolder(const std::string& path) { return kindAt(path) == FileKind::folder; }

  /// The allocated bytes of what stands at a path, 0 where nothing does. A folder that is measured for that is listed
  /// from then on.
  std::int64_t bytesAt(const std::string& path);

  bool isStopped() const { return stop_.stop_requested(); }

 private:
  std::optional<Entries> read(const std::string& path, LinkPolicy links, std::size_t most) const;

  const FileReader& reader_;
  const FolderByteTotals& known_;
  const std::stop_token stop_;
  std::map<std::pair<std::string, LinkPolicy>, std::optional<Entries>> listed_;
};

/// The entry of that name; null where there is none.
const AppFolders::Entry* entryNamed(const AppFolders::Entries& entries, std::string_view name);

}  // namespace lumenary
