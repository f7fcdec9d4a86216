#pragma once

#include <string>
#include <string_view>

#include "cleanup/StorageTrashGate.h"
#include "storage/FileEntry.h"

/// How an item is shown to a person: a name where its own says nothing, where it belongs, and what its removal would
/// do. The texts hold bytes of names as they are; turn them into text for eyes where they are shown.
namespace lumenary {

std::string friendlyName(const FileEntry& entry);
/// A line to stand below the name. `home` is the home folder's path.
std::string friendlyLocation(const FileEntry& entry, std::string_view home);
/// A freedesktop icon name.
std::string_view friendlySymbol(const FileEntry& entry);
/// One sentence. Asks the disk as little as the gate does.
std::string deletionImpact(const FileEntry& entry, const StorageTrashGate& gate);

}  // namespace lumenary
