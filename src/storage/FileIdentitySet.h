#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/FileIdentity.h"

namespace lumenary {

/// The files that a walk has met, told by device and inode and numbered from 0 in the order in which they came. A table
/// with open addressing, at most half full: in a tree made of hard links, as package managers make them, every file is
/// looked up, and a node for each would be felt.
class FileIdentitySet {
 public:
  struct Insertion {
    std::size_t index = 0;
    bool isNew = false;
  };

  Insertion insert(const FileIdentity& file) {
    if (slots_.size() < 2 * (files_.size() + 1)) {
      grow();
    }
    const File wanted{file.device, file.inode};
    std::uint32_t& slot = slotFor(wanted);
    if (slot != free) {
      return {.index = slot, .isNew = false};
    }
    slot = static_cast<std::uint32_t>(files_.size());
    files_.push_back(wanted);
    return {.index = slot, .isNew = true};
  }

 private:
  struct File {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    bool operator==(const File&) const = default;
  };

  static constexpr std::uint32_t free = 0xFFFF'FFFF;

  std::uint32_t& slotFor(const File& wanted) {
    // Multiplying by 2^64 divided by the golden ratio spreads neighbouring inodes over the upper bits (Fibonacci
    // hashing).
    const std::uint64_t hash = (wanted.inode ^ std::rotl(wanted.device, 32)) * 0x9E3779B97F4A7C15U;
    std::size_t index = hash >> (64 - std::countr_zero(slots_.size()));
    while (slots_[index] != free && files_[slots_[index]] != wanted) {
      index = (index + 1) & (slots_.size() - 1);
    }
    return slots_[index];
  }

  void grow() {
    slots_.assign(slots_.empty() ? 16 : 2 * slots_.size(), free);
    for (std::uint32_t index = 0; index < files_.size(); ++index) {
      slotFor(files_[index]) = index;
    }
  }

  std::vector<File> files_;
  std::vector<std::uint32_t> slots_;  ///< as many as a power of two
};

}  // namespace lumenary
