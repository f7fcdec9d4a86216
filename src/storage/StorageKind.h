#pragma once

#include <cstdint>
#include <string_view>

namespace lumenary {

/// What a thing is, for people: finer than its category.
enum class StorageKind : std::uint8_t {
  cache,
  dependencies,
  buildFiles,
  trash,
  app,
  appData,
  developer,
  yourFiles,
  system,
  other,
};

std::string_view rawValue(StorageKind kind);
/// One or two sentences that say what such things are.
std::string_view explanation(StorageKind kind);

/// By the path alone, in any case of letters. `isFolder` plays no part in the answer.
StorageKind storageKindOf(std::string_view path, bool isFolder);

}  // namespace lumenary
