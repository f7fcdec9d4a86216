#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>

#include "platform/FileReader.h"
#include "platform/SystemError.h"
#include "platform/TrashBin.h"

/// How much the Trash holds, and emptying it in words.
namespace lumenary {

/// How emptying ended.
struct TrashEmptyResult {
  enum class Kind : std::uint8_t { failed, emptied, alreadyEmpty };

  Kind kind = Kind::failed;
  std::string message{};  ///< of a failure: the sentence for the person

  bool operator==(const TrashEmptyResult&) const = default;
};

/// Removes what is in the Trash for good. Blocks for as long as that takes.
TrashEmptyResult emptyTrash(TrashBin& bin, const EmptyingProgress& progress = {}, const std::stop_token& stop = {});

/// What the end of an emptying by a file manager means: its exit status, what it printed, and its errors, in which the
/// last number in brackets, "(-128)", tells the cause.
TrashEmptyResult interpretEmptyTrash(int status, std::string_view output, std::string_view errors);

/// The allocated bytes of a Trash's folder, at least 1 where anything but ".DS_Store" stands in it. No value where it
/// can't be read. Walks it.
std::optional<std::int64_t> trashSize(const FileReader& reader, const std::string& folder);

/// The sum over the folders that `TrashBin::itemFolders` gives, each counted once. No value where the first can't be
/// read; a folder that isn't there holds nothing.
std::optional<std::int64_t> totalTrashSize(const FileReader& reader, std::span<const std::string> folders);

}  // namespace lumenary
